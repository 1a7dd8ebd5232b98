// What the driver asks of the user's screen.
#pragma once

#include <string>

namespace corvane::platform {

// Shows the text with an OK button and waits for it, in front of the thread's active window. UTF-8.
void ShowMessage(const std::string& title, const std::string& text);

// Shows the hourglass pointer for as long as it lives, then the pointer that was there before. Messages are not
// processed meanwhile: a host that reacted to them could call the driver in the middle of an opening.
class BusyPointer {
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

private:
    void* Previous_;
};

}  // namespace corvane::platform
