// SPDX-License-Identifier: MIT
// What the processor offers beyond the baseline that the runtime is compiled for. Code that
// uses a wider instruction set compiles it for that set alone and asks here before it runs it.
#pragma once

namespace rvtools {

#if defined(__x86_64__)
// Whether the processor has AVX2; the processor is asked once.
inline bool hasAvx2() {
  static const bool supported = __builtin_cpu_supports("avx2");
  return supported;
}
#endif

}  // namespace rvtools
