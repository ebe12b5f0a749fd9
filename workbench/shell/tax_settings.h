#pragma once

#include <QWidget>

#include "workbench/records/fee_template.h"
#include "workbench/records/taxation.h"

class QComboBox;
class QLineEdit;

namespace shell {

class Session;

/// How the project is taxed, to be chosen and typed: each change is one stored step. A rate that is
/// not that of its method makes the method one's own.
class TaxSettings : public QWidget {
  Q_OBJECT

 public:
  TaxSettings(Session& session, records::FeeTemplate feeTemplate);
  ~TaxSettings() override;

 public slots:
  /// Shows what the project has now.
  void refresh();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void choose(int index);
  void readRate();
  void apply(const records::Taxation& taxation);
  records::Taxation taxation() const;

  Session& session_;
  records::FeeTemplate feeTemplate_;
  QComboBox* method_;
  QLineEdit* rate_;
};

}  // namespace shell
