#pragma once

namespace tarn {

// What a tree can show: an object known by its identity, held by std::shared_ptr.
class NSObject {
public:
  NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  virtual ~NSObject() = default;
};

}  // namespace tarn
