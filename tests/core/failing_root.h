#pragma once

/// While it lives, the install root cannot be read.
class FailingRoot {
public:
    FailingRoot();
    ~FailingRoot();
    FailingRoot(const FailingRoot&) = delete;
    FailingRoot& operator=(const FailingRoot&) = delete;
};
