// The recording thread: brings the used modules into step, then receives block after block into the ring until the busy
// flag is cleared. It owns nothing; everything it works on is set up before it is resumed and outlives it.
#pragma once

namespace corvane {

// Thread procedure; `engineState` is the EngineState of the host thread that started the recording. Stops the modules
// and clears the busy flag before it returns; after a start that failed it touches nothing.
// Nothing is reported: what doesn't come shows in the samples.
void AcquisitionThread(void* engineState);

}  // namespace corvane
