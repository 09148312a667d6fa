#pragma once
/// A VST 2.4 effect in this process, from its loading to its closing, known by nothing but its
/// binary interface. As many as one likes can be there side by side.

#include "platform/library.h"
#include "plugin/host.h"

#include <filesystem>

/// A library's entry, by either of its names; null where there is none.
[[nodiscard]] VstPluginMainProc plugin_entry(const library& its_library);

class effect {
public:
    /// Loads the library, creates an effect that talks to that host, and opens it. Throws a failure
    /// that names the file and the reason.
    effect(const std::filesystem::path& file, host_answers answers,
           library::in_the_end then = library::in_the_end::is_unloaded);
    ~effect(); ///< closes it, unless that was done
    effect(const effect&) = delete;
    effect& operator=(const effect&) = delete;

    [[nodiscard]] AEffect* record() const { return p_record_; } ///< null once it is closed

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0) const {
        return p_record_->dispatcher(p_record_, opcode, index, value, ptr, opt);
    }
    [[nodiscard]] float get(VstInt32 index) const {
        return p_record_->getParameter(p_record_, index);
    }
    void set(VstInt32 index, float value) const {
        p_record_->setParameter(p_record_, index, value);
    }

    VstIntPtr close(); ///< not twice

private:
    library library_;
    host_answers answers_;
    AEffect* p_record_ = nullptr;
};
