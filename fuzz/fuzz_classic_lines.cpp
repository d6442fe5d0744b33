// Both classic line readers on arbitrary lines, and every getter and text of the result.
#include "classic/ClassicRowFormatter.h"
#include "trace/CTraceItemI.h"
#include "trace/IndexTimeReader.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace {

void Exercise(const CTraceItemI& item) {
    std::string text;
    std::uint8_t byte = 0;
    std::uint32_t word = 0;
    const std::uint8_t* data = nullptr;
    item.GetMarkText(text);
    item.GetEventText(text);
    item.GetPcTimeText(text);
    item.GetKind(byte);
    item.GetChannel(byte);
    item.GetTime(word);
    item.GetEventCode(word);
    item.GetIdentifier(word);
    item.GetExtendedFlag(byte);
    item.GetDirection(byte);
    item.GetPriority(word);
    item.GetSource(word);
    item.GetDestination(byte);
    item.GetSeverity(byte);
    item.GetDataLength(byte);
    item.GetData(data);
    item.GetFlexChannel(byte);
    item.GetFlexSlot(word);
    text = DataBytesText(item);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // A record line as the file hands it over: at most 256 characters, ending at a NUL.
    char line[257];
    const std::size_t length = size < 256 ? size : 256;
    std::memcpy(line, bytes, length);
    line[length] = '\0';
    CTraceItemI legacy;
    legacy.ParseLine(line, 1);
    Exercise(legacy);
    CTraceItemI v701;
    v701.ParseLineV701(line, 1);
    Exercise(v701);
    IndexLineFacts facts;
    ReadIndexLineFacts(line, std::strlen(line), facts);
    return 0;
}
