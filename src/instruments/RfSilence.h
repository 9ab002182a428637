#pragma once

namespace hylden {

class SigGen;

/// Takes the generator's RF off, whatever the generator can do. One without an RF-off command would go on sending while
/// its RF counts as off, so it is taken to its minimum level first.
/// @return false when a command failed, after its report
bool SilenceRf(SigGen& sigGen);

}  // namespace hylden
