// Reads an input from its front to its end. Beyond the end every byte is 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex::fuzz {

class ByteReader {
public:
  ByteReader(const std::uint8_t* bytes, std::size_t count) : m_Next(bytes), m_End(bytes + count) {}

  bool IsAtEnd() const { return m_Next == m_End; }
  int Byte() { return IsAtEnd() ? 0 : *m_Next++; }
  // A number from 0 to `limit` - 1.
  int Below(std::size_t limit) { return static_cast<int>(static_cast<std::size_t>(Byte()) % limit); }
  template <class List>
  const auto& Pick(const List& list) {
    return list[static_cast<std::size_t>(Below(std::size(list)))];
  }
  // The letter of a command. A lower-case letter stands for itself, every other byte for one of 32 letters and marks:
  // seeds are readable lists of commands, and every input is such a list.
  char Letter() { return static_cast<char>('`' + Byte() % 32); }
  // At most `count` bytes, as many as are left.
  std::vector<std::uint8_t> Bytes(std::size_t count) {
    const std::uint8_t* begin = m_Next;
    m_Next += std::min(count, static_cast<std::size_t>(m_End - m_Next));
    return {begin, m_Next};
  }
  std::string Line() {
    const std::uint8_t* end = std::find(m_Next, m_End, std::uint8_t{'\n'});
    const std::string line(m_Next, end);
    m_Next = end == m_End ? end : end + 1;
    return line;
  }
  std::string Rest() {
    const std::string rest(m_Next, m_End);
    m_Next = m_End;
    return rest;
  }

private:
  const std::uint8_t* m_Next;
  const std::uint8_t* m_End;
};

}  // namespace orvex::fuzz
