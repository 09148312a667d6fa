#include "check/trial.h"

void trial::expect(bool holds, const std::string& what) const {
    if (!holds)
        throw row_end{verdict::failed, what};
}

void trial::prefer(bool holds, const std::string& what) {
    if (!holds && warnings_.find(what) == std::string::npos)
        warnings_ += (warnings_.empty() ? "" : "; ") + what;
}

void trial::skip(const std::string& why) const {
    throw row_end{verdict::skipped, "not applicable: " + why};
}
