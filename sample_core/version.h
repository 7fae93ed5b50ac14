#ifndef CORVANA_SAMPLE_CORE_VERSION_H_
#define CORVANA_SAMPLE_CORE_VERSION_H_

inline constexpr char k_core_version[] = "1.0.0";

#endif
