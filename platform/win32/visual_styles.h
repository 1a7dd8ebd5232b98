// While it exists, windows that the thread makes have the look of the user's system. For this the component has a
// manifest of its own: the host's process may have none, or an old one.
#pragma once

#include <windows.h>

namespace corvane::platform {

class VisualStyles {
public:
    VisualStyles();
    ~VisualStyles();
    VisualStyles(const VisualStyles&) = delete;
    VisualStyles& operator=(const VisualStyles&) = delete;

private:
    HANDLE Context_;
    ULONG_PTR Cookie_ = 0;
    bool Active_ = false;
};

}  // namespace corvane::platform
