#include "destructors/collection_dialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <utility>

namespace gui::qce::destructors {

DesCollectionDialog::DesCollectionDialog(Offer offer, Confirm confirm, QWidget* parent)
    : Dialog(parent),
      offer_(std::move(offer)),
      confirm_(std::move(confirm)),
      target_(new QComboBox(this)),
      accountText_(new QLineEdit(this)),
      accountButton_(new QPushButton("选择…", this)),
      features_(new QPlainTextEdit(this)),
      price_(new QLineEdit(this)),
      metering_(new QLabel(this)),
      effect_(new QLabel(this)),
      bills_(new DesSourceBillView(this)) {
  setWindowTitle("设置归集");
  target_->setObjectName("DesCollection_target");
  for (const auto& target : offer_.targets) {
    const QString name = QString::fromStdString(target.name);
    target_->addItem(target.entry == nullptr ? QString("新建分包：%1").arg(name) : name);
  }
  target_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  target_->setMinimumContentsLength(24);
  accountText_->setObjectName("DesCollection_account");
  accountText_->setReadOnly(true);
  accountText_->setPlaceholderText("（无成本科目）");
  accountButton_->setObjectName("DesCollection_chooseAccount");
  accountButton_->setAutoDefault(false);
  features_->setObjectName("DesCollection_features");
  features_->setTabChangesFocus(true);
  price_->setObjectName("DesCollection_price");
  price_->setToolTip("不含税单价（元），可输入数字或计算式，例如 120*0.95");
  metering_->setObjectName("DesCollection_metering");
  metering_->setWordWrap(true);
  effect_->setObjectName("DesCollection_effect");
  effect_->setWordWrap(true);

  auto* account = new QHBoxLayout;
  account->addWidget(accountText_, 1);
  account->addWidget(accountButton_);
  auto* form = new QFormLayout;
  form->addRow("归集到", target_);
  form->addRow("成本科目", account);
  form->addRow("项目特征", features_);
  form->addRow("劳务、专业分包单价", price_);
  form->addRow("计量", metering_);
  form->addRow("成本变化", effect_);
  auto* fields = new QWidget(this);
  fields->setLayout(form);
  form->setContentsMargins(0, 0, 0, 0);

  auto* splitter = new QSplitter(this);
  splitter->setHandleWidth(8);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(fields);
  splitter->addWidget(bills_);
  splitter->setSizes({440, 580});
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      new QLabel(QString("把选中的 %1 项人材机归集到一条分包。归集后它们的费用由分包计入成本。")
                     .arg(offer_.items),
                 this));
  layout->addWidget(splitter, 1);
  layout->addWidget(createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
  resizeOverWindow(QSize(1040, 460));

  bills_->setBills(offer_.bills);
  showTarget();
  connect(target_, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
          &DesCollectionDialog::showTarget);
  connect(price_, &QLineEdit::textChanged, this, &DesCollectionDialog::showEffect);
  connect(accountButton_, &QPushButton::clicked, this, &DesCollectionDialog::chooseAccount);
  connect(bills_, &DesSourceBillView::currentBillChanged, this, [this] {
    const auto* bill = bills_->currentBill();
    if (bill == nullptr || features_->isReadOnly() || features_->document()->isModified()) return;
    features_->setPlainText(QString::fromStdString(bill->features));
  });
  price_->setFocus();
  price_->selectAll();
}

DesCollectionDialog::~DesCollectionDialog() = default;

bool DesCollectionDialog::isNew(int target) const {
  return target >= 0 && target < static_cast<int>(offer_.targets.size()) &&
         offer_.targets[static_cast<std::size_t>(target)].entry == nullptr;
}

void DesCollectionDialog::showTarget() {
  const int number = target_->currentIndex();
  if (number < 0 || number >= static_cast<int>(offer_.targets.size())) return;
  if (isNew(shown_)) {
    auto& left = offer_.targets[static_cast<std::size_t>(shown_)];
    left.account = account_;
    left.price = price_->text().toStdString();
    featuresTyped_ = features_->document()->isModified();
    if (featuresTyped_) left.features = features_->toPlainText().toStdString();
  }
  shown_ = number;
  const auto& target = offer_.targets[static_cast<std::size_t>(number)];
  const bool isNew = target.entry == nullptr;
  const bool typed = isNew && featuresTyped_;
  setAccount(target.account);
  // The features of the bill that is current are what a new subcontract is about.
  const auto* bill = bills_->currentBill();
  features_->setPlainText(QString::fromStdString(
      isNew && !typed && bill != nullptr ? bill->features : target.features));
  features_->document()->setModified(typed);
  price_->setText(QString::fromStdString(target.price));
  metering_->setText(QString::fromStdString(target.metering));
  accountButton_->setEnabled(isNew);
  features_->setReadOnly(!isNew);
  price_->setReadOnly(!isNew);
  showEffect();
}

void DesCollectionDialog::showEffect() {
  if (!offer_.effect) return;
  const auto effect = offer_.effect(setting());
  QString pays = "单价尚不能计算";
  if (!effect.pays.empty()) {
    pays = QString(isNew(shown_) ? "新建分包的合价 %1 元计入成本"
                                 : "该分包的合价仍为 %1 元，不因归集改变")
               .arg(QString::fromStdString(effect.pays));
  }
  effect_->setText(
      QString("选中的人材机减少成本 %1 元；%2。").arg(QString::fromStdString(effect.leaves), pays));
}

void DesCollectionDialog::setAccount(proxy::Element* account) {
  account_ = account;
  accountText_->clear();
  for (const auto& entry : offer_.accounts) {
    if (account != nullptr && entry.account == account) {
      accountText_->setText(QString::fromStdString(entry.code + " " + entry.name).trimmed());
    }
  }
}

void DesCollectionDialog::chooseAccount() {
  DesCostAccountDialog dialog("新建分包的成本科目:", offer_.accounts, account_, this);
  if (dialog.exec() == 1) setAccount(dialog.account());
}

DesCollectionDialog::Setting DesCollectionDialog::setting() const {
  Setting setting;
  const auto chosen = static_cast<std::size_t>(target_->currentIndex());  // none: beyond the last
  if (chosen < offer_.targets.size()) setting.entry = offer_.targets[chosen].entry;
  setting.account = account_;
  setting.features = features_->toPlainText().trimmed().toStdString();
  setting.price = price_->text().trimmed().toStdString();
  return setting;
}

void DesCollectionDialog::accept() {
  if (target_->currentIndex() < 0) return;
  if (confirm_(setting())) {
    Dialog::accept();
    return;
  }
  // Of an entry that is there, only the choice itself can be mended.
  if (price_->isReadOnly()) {
    target_->setFocus();
    return;
  }
  price_->setFocus();
  price_->selectAll();
}

}  // namespace gui::qce::destructors
