// The built-in message table. Entries other than those below belong to other components and
// carry no text here.

#include <array>

#include "service/messages.hpp"

namespace zor {

namespace {

constexpr std::array<MessageEntry, kMessageCount> make_table() {
    std::array<MessageEntry, kMessageCount> table{};
    for (int i = 0; i < kMessageCount; ++i) table[i] = {i, MessageClass::Plain, ""};
    table[kMsgLineFeed] = {kMsgLineFeed, MessageClass::Plain, "\n"};
    table[kMsgCpuTypeNotConvenient] = {
        kMsgCpuTypeNotConvenient, MessageClass::Warning,
        "ZOR WARNING: ZOR_DEBUG_CPU_TYPE=%d not convenient for this processor."};
    table[kMsgBadParameter] = {kMsgBadParameter, MessageClass::Error,
                               "ZOR ERROR: Parameter %d was incorrect on entry to %s"};
    table[kMsgInternalCondition] = {kMsgInternalCondition, MessageClass::Error,
                                    "ZOR INTERNAL ERROR: Condition %d detected in function %s"};
    table[kMsgNoWorkMemory] = {kMsgNoWorkMemory, MessageClass::Error,
                               "ZOR INTERNAL ERROR: Not enough work memory in function %s"};
    table[kMsgIncompatibleOptions] = {kMsgIncompatibleOptions, MessageClass::Error,
                                      "ZOR ERROR: Incompatible optional parameters on entry to %s"};
    table[kMsgAllocationFailure] = {kMsgAllocationFailure, MessageClass::Error,
                                    "ZOR INTERNAL ERROR: Not enough work memory in function %s"};
    return table;
}

constexpr std::array<MessageEntry, kMessageCount> kMessages = make_table();

}  // namespace

const MessageEntry& builtin_message(int number) {
    if (number < 0 || number >= kMessageCount) number = 1;  // an empty entry
    return kMessages[number];
}

}  // namespace zor
