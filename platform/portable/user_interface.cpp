#include "platform/user_interface.h"

namespace corvane::platform {

BusyPointer::BusyPointer() : Previous_(nullptr) {}

BusyPointer::~BusyPointer() {
    static_cast<void>(Previous_);  // there is no screen, so there is no pointer to restore
}

}  // namespace corvane::platform
