// Small helpers of the CSV tests: the code a failing call throws.
#ifndef QV_TESTS_CSV_CSV_TEST_UTIL_H_
#define QV_TESTS_CSV_CSV_TEST_UTIL_H_

#include <cstdint>

#include "app/qv_conv_exception.h"

namespace qvtest {

// The code of the QvConvException pointer that `call` throws, 0 if none.
template <typename Call>
std::int32_t CodeOf(Call call) {
  try {
    call();
  } catch (quorvane::qvconv::converter::QvConvException* e) {
    std::int32_t code = e->code();
    delete e;
    return code;
  }
  return 0;
}

}  // namespace qvtest

#endif  // QV_TESTS_CSV_CSV_TEST_UTIL_H_
