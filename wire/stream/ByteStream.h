#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn {

// What carries the bytes between a connection and its server. Held by std::shared_ptr: by the connection, and by each
// call that works on it, so that closing takes nothing away from under a call.
//
// Any thread may call shutDown(), wasShutDown() and traffic(); all else belongs to the thread that holds the
// connection's lock.
class ByteStream {
public:
  // How many bytes peek() looks at, at most.
  static constexpr std::size_t windowSize = std::size_t{128} * 1024;

  // Bytes since the stream was opened: those that have left for the server, and those taken off.
  struct Traffic {
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
  };

  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  virtual ~ByteStream() = default;

  // True while the server hasn't closed: asks without waiting and takes nothing from the stream.
  virtual bool isAlive() = 0;

  // Sends all of `bytes`. False if the connection was lost on the way.
  virtual bool sendAll(std::string_view bytes) = 0;

  // What has arrived, up to a window's size, left in the stream; waits for the first byte. Empty if the connection was
  // lost. Valid until the next call.
  virtual std::string_view peek() = 0;

  // Drops the next `count` bytes of the stream, waiting for those that haven't arrived. False if the connection was
  // lost.
  virtual bool takeOff(std::size_t count) = 0;

  // Waits for bytes and puts up to `count` of them at `destination`. Answers how many; 0 if the connection was lost.
  virtual std::size_t receive(char* destination, std::size_t count) = 0;

  // Ends the connection: a call that waits on it fails, and so does every later one.
  virtual void shutDown() = 0;
  virtual bool wasShutDown() const = 0;

  virtual Traffic traffic() const = 0;
};

}  // namespace tarn
