// Who stands in for the user of the setup dialog, which has no window here.
#pragma once

#include <functional>

namespace corvane {

class dlgSetup;

extern std::function<void(dlgSetup&)> UserOfSetup;  // empty: closes the window at once

}  // namespace corvane
