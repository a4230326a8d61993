// A static object that outlives every thread and every other static object.
#pragma once

#include <utility>

namespace orvex::port {

// Makes a T and never destroys it. Static objects are destroyed when the process ends, in an order that files do not
// know of one another, while threads may still run: what either of them may use until the end lives in one of these.
//
//   static const NoDestroy<std::mutex> mutex;
//   const std::lock_guard<std::mutex> lock(*mutex);
template <typename T>
class NoDestroy {
public:
  template <typename... Arguments>
  explicit NoDestroy(Arguments&&... arguments) : m_Object(*new T(std::forward<Arguments>(arguments)...)) {}
  NoDestroy(const NoDestroy&) = delete;
  NoDestroy& operator=(const NoDestroy&) = delete;

  T& operator*() const { return m_Object; }
  T* operator->() const { return &m_Object; }

private:
  T& m_Object;
};

}  // namespace orvex::port
