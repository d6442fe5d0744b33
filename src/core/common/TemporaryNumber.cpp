#include "common/TemporaryNumber.h"

#include <cstdlib>
#include <mutex>
#include <sys/time.h>

namespace zdt {

int TemporaryNumber() {
    // rand() is shared by the whole process, and names are made on several threads.
    static std::mutex mutex;
    static bool seeded = false;
    const std::lock_guard lock(mutex);
    if (!seeded) {
        timeval now{};
        gettimeofday(&now, nullptr);
        std::srand(static_cast<unsigned>(now.tv_sec ^ now.tv_usec));
        seeded = true;
    }
    return std::rand();
}

} // namespace zdt
