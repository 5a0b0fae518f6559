// The process-wide state the media decoders need, started and stopped by the
// host through InitMediaDecoderEnvironment / UninitMediaDecoderEnvironment.
#ifndef LUMAFORGE_DECODER_MEDIA_ENVIRONMENT_H_
#define LUMAFORGE_DECODER_MEDIA_ENVIRONMENT_H_

namespace Lumaforge {

bool StartMediaEnvironment();
void StopMediaEnvironment();

}  // namespace Lumaforge

#endif  // LUMAFORGE_DECODER_MEDIA_ENVIRONMENT_H_
