// Setting and clearing environment variables from tests and benchmarks, on
// Linux and Windows alike.
#ifndef LUMAFORGE_TESTS_ENVIRONMENT_H_
#define LUMAFORGE_TESTS_ENVIRONMENT_H_

#include <cstdlib>

namespace Lumaforge::test {

inline void SetEnv(const char* name, const char* value) {
#if defined(_WIN32)
  _putenv_s(name, value);
#else
  setenv(name, value, 1);
#endif
}

inline void UnsetEnv(const char* name) {
#if defined(_WIN32)
  _putenv_s(name, "");  // an empty value removes the variable
#else
  unsetenv(name);
#endif
}

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_ENVIRONMENT_H_
