#include "service/lsame.hpp"

namespace zor {

bool lsame(const char& ca, const char& cb) {
    return ca == cb || ascii_upper(ca) == ascii_upper(cb);
}

}  // namespace zor
