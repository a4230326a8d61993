// One instance of a class per process, made on first use.
#pragma once

#include <atomic>
#include <mutex>

#include "Util/OrvexLog.h"

// CSingleton<T>::GetInstance() makes the T on first use, from whichever thread comes first, and never destroys it, so
// that threads which outlive static destruction still find it.
template <class T>
class CSingleton {
public:
  // The instance, never null. Any thread; takes the lock only until the instance exists.
  static T* GetInstance() {
    T* instance = m_pInstance.load();
    if (instance != nullptr) {
      return instance;
    }
    const std::lock_guard<std::mutex> lock(m_Mutex);
    instance = m_pInstance.load();
    if (instance == nullptr) {
      ORVEX_INFO("[singleton] new instance");
      instance = new T;
      m_pInstance.store(instance);
    }
    return instance;
  }

private:
  static inline std::atomic<T*> m_pInstance{nullptr};
  static inline std::mutex m_Mutex;
};
