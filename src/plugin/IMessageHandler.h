// The host framework's message interface, as far as the services need it. Slot order is part of the contract.
#pragma once

namespace lmx {

// A message of the host. Only the third operation is called here; the others belong to the host framework.
class IMessage {
 public:
  virtual void reserved0() = 0;  // slot 0
  virtual void reserved1() = 0;  // slot 1
  virtual int handBack() = 0;    // slot 2: the result is ignored

 protected:
  IMessage() = default;
  IMessage(const IMessage&) = default;
  IMessage& operator=(const IMessage&) = default;
  ~IMessage() = default;  // never destroyed through this interface
};

class IMessageHandler {
 public:
  virtual ~IMessageHandler() = default;              // slot 0: destroys the whole service object
  virtual int handleMessage(IMessage* message) = 0;  // slot 1: hands the message back to itself and returns 0
};

}  // namespace lmx
