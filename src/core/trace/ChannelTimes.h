#pragma once

#include <cstdint>
#include <vector>

// The last time seen per channel, for relative-channel times. Storing a channel's time
// replaces its old entry; a channel seen for the first time had time 0.
class ChannelTimes {
public:
    // Returns what was stored for the channel (0 when new) and stores `time` for it.
    std::uint32_t Exchange(int channel, std::uint32_t time);
    void Clear() { m_entries.clear(); }
    std::size_t Size() const { return m_entries.size(); }

private:
    struct Entry {
        int channel;
        std::uint32_t time;
    };
    std::vector<Entry> m_entries;
};
