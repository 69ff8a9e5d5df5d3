// NSData and NSMutableData: byte buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSRange.h"

namespace kbx {

class DataBlock;
class NSError;
class NSMutableData;
class NSURL;

/// Options of reading and writing files. Nothing but atomic writing changes what happens here.
enum NSDataWritingOptions : std::uint64_t { NSDataWritingNone = 0, NSDataWritingAtomic = 1 };
enum NSDataReadingOptions : std::uint64_t { NSDataReadingNone = 0 };

/// An immutable byte buffer. May be shared between threads.
class KBX_PLATFORM NSData : public NSObject {
  KBX_OBJECT(NSData, NSObject)
 public:
  static Ref<NSData> data();
  /// A copy of the bytes; nullptr for none.
  static Ref<NSData> dataWithBytes(const void* bytes, std::size_t length);
  static Ref<NSData> dataWithBytes(std::string_view bytes);
  /// Takes over a block of the C allocator (freed with std::free) of at least `length` bytes.
  static Ref<NSData> dataWithBytesNoCopy(void* bytes, std::size_t length);
  /// A new object with the bytes of `data`, never `data` itself; absent for an absent one. The
  /// bytes of an immutable buffer are shared, not copied. (dataWithData:)
  static Ref<NSData> dataWithData(NSData* data);
  /// The bytes of a file, read whole. (dataWithContentsOfURL:options:error:)
  ///
  /// Fails in NSCocoaErrorDomain with the path and an underlying POSIX error: 260 no such file,
  /// 257 no permission, 263 larger than 2^31 - 1 bytes, 256 anything else. What is no regular file
  /// (a folder, a pipe, a device) is refused and never waited for.
  static Ref<NSData> dataWithContentsOfURL(NSURL* url, NSDataReadingOptions options,
                                           Ref<NSError>* error);

  /// Stores the bytes in a file. (writeToURL:options:error:)
  ///
  /// Without options the file is written in place; an existing one is replaced, and a failure may
  /// leave a part. With NSDataWritingAtomic the bytes are written beside, flushed and renamed.
  /// Fails in NSCocoaErrorDomain with the path and an underlying POSIX error: 4 no such folder, 513
  /// no permission, 640 no space, 642 read-only volume, 512 anything else.
  bool writeToURL(NSURL* url, NSDataWritingOptions options, Ref<NSError>* error);

  const std::uint8_t* bytes() const noexcept { return _bytes; }
  std::size_t length() const noexcept { return _length; }
  std::string_view view() const noexcept {
    return {reinterpret_cast<const char*>(_bytes), _length};
  }
  /// Raises NSRangeException when the range reaches past the end. (subdataWithRange:)
  Ref<NSData> subdataWithRange(NSRange range) const;

  Ref<NSData> copy();
  Ref<NSMutableData> mutableCopy() const;

  /// "{length = 3, bytes = 0x616263}"; long buffers show their first and last bytes only.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

  // Objects are blocks of the C allocator, because a block may go on with the object's bytes.
  static void* operator new(std::size_t size);
  static void operator delete(void* object) noexcept;

 protected:
  NSData(std::uint8_t* bytes, std::size_t length) noexcept : _bytes(bytes), _length(length) {}
  ~NSData() override;

 private:
  friend class DataBlock;
  bool _isOneBlock = false;  // whether the bytes lie behind the object, in the object's own block

 protected:
  std::uint8_t* _bytes;  // of the C allocator, or nullptr when nothing was ever stored
  std::size_t _length;

 private:
  Ref<NSData> _owner;  // whose bytes these are; absent where they are our own
};

/// A byte buffer that grows. Belongs to one thread at a time.
class KBX_PLATFORM NSMutableData : public NSData {
  KBX_OBJECT(NSMutableData, NSData)
 public:
  static Ref<NSMutableData> data();
  static Ref<NSMutableData> dataWithCapacity(std::size_t capacity);
  /// `length` zero bytes. (dataWithLength:)
  static Ref<NSMutableData> dataWithLength(std::size_t length);

  std::uint8_t* mutableBytes() noexcept { return _bytes; }
  /// New bytes are zero. (setLength:)
  void setLength(std::size_t length);
  void appendBytes(const void* bytes, std::size_t length);
  void appendBytes(std::string_view bytes) { appendBytes(bytes.data(), bytes.size()); }
  void appendData(NSData* data);

  Ref<NSObject> copyObject() override;

 private:
  NSMutableData() noexcept : NSData(nullptr, 0) {}
  void reserve(std::size_t capacity);
  void grow(std::size_t length);

  std::size_t _capacity = 0;
};

}  // namespace kbx
