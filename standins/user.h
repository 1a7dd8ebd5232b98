// Acts for the user in the native build, which has no screen: keeps the messages, and operates the dialogs.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corvane {

class dlgIP;
class dlgQuorn;
class dlgSetup;

extern std::vector<std::string> ShownMessages;  // "title|text"

// Each acts on its dialog in the place of the window's modal loop.
extern std::function<void(dlgIP&)> UserOfIP;         // empty: closes the window at once
extern std::function<void(dlgQuorn&)> UserOfDevice;  // empty: accepts what is proposed
extern std::function<void(dlgSetup&)> UserOfSetup;   // empty: closes the window at once

}  // namespace corvane
