// Processor time that this process has used, all threads, in seconds.
#pragma once

namespace corvane::bench {

double ProcessSeconds();

}  // namespace corvane::bench
