#pragma once

#include <memory>

namespace bench {

/// A project of `bills` bills with `itemsPerBill` budget items each, and the pooling dialog on it.
class Pooling {
 public:
  Pooling(int bills, int itemsPerBill);
  ~Pooling();

  // What each takes, in seconds.

  /// Opens the dialog on all bills until it is painted.
  double open();
  /// Checks the row of the first bill, with everything below it, in an open dialog.
  double check();
  /// Announces as many changed cells as check() does in the same dialog, and does nothing else.
  double announce();

 private:
  struct Parts;
  struct Dialog;
  std::unique_ptr<Parts> parts_;
};

}  // namespace bench
