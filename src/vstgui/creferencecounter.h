#pragma once
/// What several users own together lives until the last of them forgets it. Its users are on one
/// thread at a time. [ui]

#include <utility>

/// Whoever creates one holds its first reference.
class CReferenceCounter {
public:
    CReferenceCounter() = default;
    CReferenceCounter(const CReferenceCounter&) = delete;
    CReferenceCounter& operator=(const CReferenceCounter&) = delete;

    void remember() { ++nbReferences; }
    void forget() {
        if (--nbReferences == 0)
            delete this;
    }

protected:
    virtual ~CReferenceCounter() = default;

private:
    int nbReferences = 1;
};

/// Holds one reference, or none.
template <typename Counted>
class CReference {
public:
    CReference() = default;

    /// Creates one and holds its first reference.
    template <typename... Arguments>
    [[nodiscard]] static CReference make(Arguments&&... arguments) {
        CReference reference;
        reference.counted = new Counted(std::forward<Arguments>(arguments)...);
        return reference;
    }

    /// Adds a reference of its own.
    explicit CReference(Counted* shared) : counted(shared) {
        if (counted)
            counted->remember();
    }
    CReference(const CReference& other) : CReference(other.counted) {}
    CReference(CReference&& other) noexcept : counted(std::exchange(other.counted, nullptr)) {}
    CReference& operator=(CReference other) noexcept {
        std::swap(counted, other.counted);
        return *this;
    }
    ~CReference() { reset(); }

    void reset() {
        if (Counted* forgotten = std::exchange(counted, nullptr))
            forgotten->forget();
    }

    [[nodiscard]] Counted* get() const { return counted; }
    Counted* operator->() const { return counted; }
    Counted& operator*() const { return *counted; }
    explicit operator bool() const { return counted != nullptr; }

private:
    Counted* counted = nullptr;
};
