// One line of the message socket: what it asks for, and the line that answers it.
#pragma once

#include <functional>
#include <string>

#include "orvex/platform/application.h"

namespace orvex::port {

// The line {"error": "..."}, without a line break.
std::string ErrorLine(const std::string& text);

// Hands the message in `line`, {"type": "...", "body": {...}}, to the application and answers with the reply's body. A
// line that is no message is answered with an error line. With `mayInject` a message of the type "event" is kept from
// the application: {"type": "event", "body": {"id": 10005}} sends the application that event. Main loop only.
std::string AnswerMessage(const std::string& line, FwEflApplication& application, bool mayInject);

// AnswerMessage() for a MessageSocket. `application` must be there when the first message comes, and outlive the
// socket.
std::function<std::string(const std::string& line)> AnswersOf(FwEflApplication* application, bool mayInject = false);

}  // namespace orvex::port
