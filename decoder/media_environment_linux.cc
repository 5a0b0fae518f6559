#include "decoder/media_environment.h"

namespace Lumaforge {

// The Linux media libraries keep no process-wide start-up state, so there is
// nothing to start or stop here.
bool StartMediaEnvironment() { return true; }
void StopMediaEnvironment() {}

}  // namespace Lumaforge
