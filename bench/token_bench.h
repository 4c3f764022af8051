#pragma once

namespace Bench {

/// One curve for each way in which each implementation accepts a token. Which there are is known
/// only when the program runs.
void RegisterTokenCurves();

}  // namespace Bench
