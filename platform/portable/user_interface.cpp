#include "platform/user_interface.h"

namespace corvane::platform {

BusyPointer::BusyPointer() : Previous_(nullptr) {}

BusyPointer::~BusyPointer() {
    static_cast<void>(Previous_);  // there is no screen, and so no pointer to give back
}

}  // namespace corvane::platform
