#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <cstddef>

#include "contract_export.h"

namespace base {

/// Base of everything that is shared by counting references. GUI thread only: the count is plain.
class QCE_CONTRACT_EXPORT Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  /// How many references are alive; 0 for an object that nobody holds yet.
  std::size_t referenceCount() const { return count_; }

 private:
  friend void intrusive_ptr_add_ref(const Object* object) noexcept { ++object->count_; }
  friend void intrusive_ptr_release(const Object* object) noexcept {
    if (--object->count_ == 0) delete object;
  }

  mutable std::size_t count_ = 0;
};

}  // namespace base

/// A counted reference to a base::Object or to a class derived from it.
template <class T>
using scoped_refptr = boost::intrusive_ptr<T>;
