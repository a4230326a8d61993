// One instance of a class per process, made on first use.
#pragma once

#include <atomic>
#include <mutex>
#include <utility>

#include "Util/OrvexLog.h"

// CSingleton<T>::GetInstance() makes the T on first use, from whichever thread comes first, and never destroys it, so
// that threads which outlive static destruction still find it.
template <class T>
class CSingleton {
public:
  // The instance, never null. `arguments` are those of the constructor when this is the first use, and are ignored
  // otherwise. Any thread; takes the lock only until the instance exists.
  template <class... Arguments>
  static T* GetInstance(Arguments&&... arguments) {
    T* instance = m_pInstance.load();
    if (instance != nullptr) {
      return instance;
    }
    const std::lock_guard<std::mutex> lock(m_Mutex);
    instance = m_pInstance.load();
    if (instance == nullptr) {
      ORVEX_INFO("[singleton] new instance");
      instance = new T(std::forward<Arguments>(arguments)...);
      m_pInstance.store(instance);
    }
    return instance;
  }

private:
  static inline std::atomic<T*> m_pInstance{nullptr};
  static inline std::mutex m_Mutex;
};
