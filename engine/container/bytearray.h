// SpriteData's storage: a byte array made zero-filled by calloc, which takes fresh pages for a
// block the size of the store, so that only the pages sprites write are ever touched. Its block is
// kept when it is cut and reused by the next load, which clears only the bytes the last one used.
// It offers the few vector calls its users need.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <new>
#include <utility>

namespace vossel {

class ByteArray {
 public:
  ByteArray() = default;
  ByteArray(std::initializer_list<uint8_t> bytes) { assign(bytes.begin(), bytes.end()); }
  template <typename It>
  ByteArray(It first, It last) {
    assign(first, last);
  }
  ByteArray(const ByteArray& other) { assign(other.begin(), other.end()); }
  ByteArray(ByteArray&& other) noexcept { swap(other); }
  ByteArray& operator=(ByteArray other) noexcept {
    swap(other);
    return *this;
  }
  ~ByteArray() { std::free(data_); }

  void swap(ByteArray& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

  // n bytes of zero. A block that is large enough is kept and only its live bytes are cleared
  // (everything behind size() is zero already); otherwise calloc gives fresh pages that are never
  // touched until written.
  void AssignZeroed(size_t n) {
    if (data_ != nullptr && n <= capacity_) {
      std::memset(data_, 0, size_);
      size_ = n;
      return;
    }
    clear();
    if (n == 0) return;
    data_ = static_cast<uint8_t*>(std::calloc(n, 1));
    if (data_ == nullptr) throw std::bad_alloc();
    size_ = capacity_ = n;
  }

  // Keeps the first n bytes, and the block. Bytes from n up to `written` may have been written
  // through data() and are cleared; bytes behind `written` must be zero already.
  void CutTo(size_t n, size_t written) {
    if (n >= size_) return;
    std::fill(data_ + n, data_ + std::max(n, std::min(written, size_)), uint8_t{0});
    size_ = n;
  }

  // Keeps the first bytes; bytes added read as zero.
  void resize(size_t n) {
    if (n > capacity_) Grow(n);
    if (n < size_) CutTo(n, size_);
    size_ = n;
  }

  void assign(size_t n, uint8_t value) {
    AssignZeroed(n);
    if (value != 0 && n > 0) std::memset(data_, value, n);
  }
  template <typename It>
  void assign(It first, It last) {
    ByteArray copy;
    copy.AssignZeroed(static_cast<size_t>(std::distance(first, last)));
    std::copy(first, last, copy.data_);
    swap(copy);
  }
  template <typename It>
  void insert(const uint8_t* at, It first, It last) {
    const size_t offset = static_cast<size_t>(at - data_);
    const size_t n = static_cast<size_t>(std::distance(first, last));
    resize(size_ + n);
    std::memmove(data_ + offset + n, data_ + offset, size_ - n - offset);
    std::copy(first, last, data_ + offset);
  }
  void push_back(uint8_t value) {
    if (size_ == capacity_) Grow(capacity_ < 16 ? 16 : capacity_ * 2);
    data_[size_++] = value;
  }
  // Frees the block.
  void clear() {
    std::free(data_);
    data_ = nullptr;
    size_ = capacity_ = 0;
  }

  uint8_t* data() { return data_; }
  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }
  size_t capacity() const { return capacity_; }
  bool empty() const { return size_ == 0; }
  uint8_t& operator[](size_t i) { return data_[i]; }
  const uint8_t& operator[](size_t i) const { return data_[i]; }
  uint8_t& back() { return data_[size_ - 1]; }
  const uint8_t& back() const { return data_[size_ - 1]; }
  uint8_t* begin() { return data_; }
  uint8_t* end() { return data_ + size_; }
  const uint8_t* begin() const { return data_; }
  const uint8_t* end() const { return data_ + size_; }

  friend bool operator==(const ByteArray& a, const ByteArray& b) {
    return a.size_ == b.size_ && (a.size_ == 0 || std::memcmp(a.data_, b.data_, a.size_) == 0);
  }

 private:
  // A larger block; the bytes added are zero.
  void Grow(size_t capacity) {
    auto* grown = static_cast<uint8_t*>(std::realloc(data_, capacity));
    if (grown == nullptr) throw std::bad_alloc();
    std::memset(grown + capacity_, 0, capacity - capacity_);
    data_ = grown;
    capacity_ = capacity;
  }

  // Everything from size_ up to capacity_ is zero.
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace vossel
