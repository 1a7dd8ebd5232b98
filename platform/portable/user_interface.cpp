#include "platform/user_interface.h"

namespace corvane::platform {

BusyPointer::BusyPointer() : Previous_(nullptr) {}

BusyPointer::~BusyPointer() = default;

}  // namespace corvane::platform
