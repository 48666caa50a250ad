#pragma once

#include "support/texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Replies of Telegram's Bot API.
namespace tremor::testing {

// A real one.
inline std::string telegramReply(const std::string& name) {
    std::string text = contentOf(TREMOR_TEST_DATA "/telegram/" + name);
    EXPECT_FALSE(text.empty()) << name;
    return text;
}

struct Sender {
    std::string id;
    std::string keys; // of the names, for example "\"first_name\":\"Ann\""
};

// A reply of getUpdates with one message of each sender, laid out as the service does.
inline std::string updatesReply(const std::vector<Sender>& senders) {
    std::string list;
    for (const Sender& sender : senders) {
        const std::string who = sender.id + ",\"is_bot\":false," + sender.keys;
        list += list.empty() ? "" : ",";
        list += "{\"update_id\":7,\n\"message\":{\"message_id\":5,\"from\":{\"id\":" + who +
                "},\"chat\":{\"id\":" + who + ",\"type\":\"private\"},\"text\":\"hello\"}}";
    }
    return "{\"ok\":true,\"result\":[" + list + "]}";
}

} // namespace tremor::testing
