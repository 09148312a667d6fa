#pragma once
/// The base of a plug-in's editor: what a host may ask of the window that it embeds. An editor
/// belongs to the effect that it was set for. All operations are [ui].

#include "vst/interface.h"

class AudioEffect;

/// Operations that answer bool tell whether they did what was asked; this base does nothing.
class AEffEditor {
public:
    explicit AEffEditor(AudioEffect* owner = nullptr) : effect(owner) {}
    virtual ~AEffEditor() = default;
    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;

    virtual AudioEffect* getEffect() { return effect; }

    /// Stores the address of the editor's size, null when it has none; a host asks before it opens.
    virtual bool getRect(ERect** rect) {
        if (rect != nullptr)
            *rect = nullptr;
        return false;
    }

    /// `ptr` is the system's handle of the parent window.
    virtual bool open(void* ptr) {
        systemWindow = ptr;
        return false;
    }
    virtual void close() { systemWindow = nullptr; }
    virtual bool isOpen() { return systemWindow != nullptr; }
    virtual void idle() {}
    virtual bool onKeyDown(VstKeyCode&) { return false; }
    virtual bool onKeyUp(VstKeyCode&) { return false; }
    virtual bool onWheel(float) { return false; }
    virtual bool setKnobMode(VstInt32) { return false; }

protected:
    AudioEffect* effect;
    void* systemWindow = nullptr; ///< null while closed
};
