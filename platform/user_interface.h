// What the driver shows the user besides its dialogs.
#pragma once

#include <string>

namespace corvane::platform {

// Shows the text with an OK button and waits for it, in front of the thread's active window. UTF-8.
void ShowMessage(const std::string& title, const std::string& text);

// Shows the hourglass pointer for as long as it exists, and then the pointer that was shown before. Messages are not
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
