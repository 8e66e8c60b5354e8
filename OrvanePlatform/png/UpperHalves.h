#pragma once

namespace orvane::png {

/// To be called after functions of ISA-L, which leave the upper halves of the processor's vector registers in
/// use (2.30): every SSE instruction of the thread then carries them along and takes more than twice as long,
/// until somebody says that they are free. Nothing where there are no such registers.
void clearUpperHalves();

} // namespace orvane::png
