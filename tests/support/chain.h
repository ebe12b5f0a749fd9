#pragma once

#include <memory>

#include "tests/support/test_elements.h"
#include "tests/support/tester_proxy.h"

namespace tests {

/// What a test of models stands on, made anew for each of its functions: a host in memory, the
/// model over it and the filter over that, all watched by testers.
template <class Host, class Model, class Filter>
class Chain {
 protected:
  void make() {
    filter_.reset();
    model_ = std::make_unique<Model>();
    op_ = std::make_unique<Host>();
    filter_ = std::make_unique<Filter>(model_.get());
    attachTester(model_.get());
    attachTester(filter_.get());
  }
  void show() {
    model_->setDisplayTable(&op_->table);
    model_->setOperator(op_.get());
  }
  QString shown() const { return QString::fromStdString(treeText(*filter_)); }

  std::unique_ptr<Host> op_;
  std::unique_ptr<Model> model_;
  std::unique_ptr<Filter> filter_;
};

}  // namespace tests
