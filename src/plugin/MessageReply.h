// What every service does with a message: it acts on none and hands it back through the message's own operation.
#pragma once

#include "plugin/IMessageHandler.h"

namespace tovr {

inline int handBackMessage(lmx::IMessage* message) {
  if (message != nullptr) message->handBack();
  return 0;
}

}  // namespace tovr
