#include "trace/ChannelTimes.h"

std::uint32_t ChannelTimes::Exchange(int channel, std::uint32_t time) {
    std::uint32_t previous = 0;
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        if (it->channel == channel) {
            previous = it->time;
            m_entries.erase(it);
            break;
        }
    }
    m_entries.push_back(Entry{channel, time});
    return previous;
}
