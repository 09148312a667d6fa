#pragma once
/// The system's services for drag and drop and for components such as its dialogs bring along: OLE
/// on Windows, nothing elsewhere. [setup] and [ui]

class ComponentServices {
public:
    /// Prepares them for this thread, if it has no others.
    ComponentServices();

    /// Releases them. On another thread they stay: each thread has its own.
    ~ComponentServices();

    ComponentServices(const ComponentServices&) = delete;
    ComponentServices& operator=(const ComponentServices&) = delete;

private:
    unsigned long thread = 0; ///< for which they are prepared; 0 for none
};
