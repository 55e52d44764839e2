// The Householder family through its internal interface.

#include <gtest/gtest.h>

#include "lapack/householder/householder.hpp"
#include "lapack/reflector_support.hpp"

namespace zor::test {
namespace {

}  // namespace
}  // namespace zor::test
