#ifndef CORVANA_SAMPLE_CORE_VERSION_H_
#define CORVANA_SAMPLE_CORE_VERSION_H_

inline constexpr char core_version[] = "1.0.0";

#endif
