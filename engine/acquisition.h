// The recording thread: aligns the used modules in time, then receives block after block into the ring until the busy
// flag is cleared. Everything that it works on is set up before it is resumed, and outlives it.
#pragma once

namespace corvane {

// Thread procedure; `engineState` is the EngineState of the host thread that started the recording. Stops the modules
// and clears the busy flag before it returns; after a start that failed it touches nothing.
// No failure is reported: samples that don't come are filled in and listed as gaps.
void AcquisitionThread(void* engineState);

}  // namespace corvane
