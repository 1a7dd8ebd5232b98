// Who stands in for the users of the dialogs, which have no windows here.
#pragma once

#include <functional>

namespace corvane {

class dlgIP;
class dlgQuorn;

extern std::function<void(dlgIP&)> UserOfIP;         // empty: closes the window at once
extern std::function<void(dlgQuorn&)> UserOfDevice;  // empty: takes what is proposed

}  // namespace corvane
