// What the driver asks of the user's screen.
#pragma once

namespace corvane::platform {

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
