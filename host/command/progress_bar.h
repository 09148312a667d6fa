#pragma once
/// A bar on standard error while something takes its time; nothing where that is no terminal.

class progress_bar {
public:
    progress_bar();
    ~progress_bar(); ///< wipes the bar away
    progress_bar(const progress_bar&) = delete;
    progress_bar& operator=(const progress_bar&) = delete;

    void show(double done); ///< from 0 to 1

private:
    bool is_visible_;
    int percent_ = -1;
};
