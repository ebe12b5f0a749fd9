#include "workbench/shell/welcome_view.h"

#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

namespace shell {

namespace {

QPushButton* bigButton(const QString& name, const QString& text, const QString& icon) {
  auto* button = new QPushButton(QIcon(icon), text);
  button->setObjectName(name);
  button->setIconSize(QSize(24, 24));
  button->setMinimumSize(180, 48);
  button->setProperty("big", true);
  return button;
}

}  // namespace

WelcomeView::WelcomeView(QWidget* parent)
    : QWidget(parent), recent_(new QListWidget), none_(new QLabel) {
  auto* title = new QLabel(QStringLiteral("成本测算工作台"));
  title->setObjectName(QStringLiteral("welcomeTitle"));
  auto* subtitle = new QLabel(
      QStringLiteral("由招标、投标或控制价文件新建成本测算，调整人材机价格，核对成本合计。"));
  subtitle->setWordWrap(true);

  QPushButton* make = bigButton(QStringLiteral("welcomeNew"), QStringLiteral("新建成本测算"),
                                QStringLiteral(":/qce/icons/new.svg"));
  QPushButton* open = bigButton(QStringLiteral("welcomeOpen"), QStringLiteral("打开工程"),
                                QStringLiteral(":/qce/icons/open.svg"));
  connect(make, &QPushButton::clicked, this, &WelcomeView::newRequested);
  connect(open, &QPushButton::clicked, this, &WelcomeView::openRequested);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(16);
  buttons->addWidget(make);
  buttons->addWidget(open);
  buttons->addStretch();

  auto* heading = new QLabel(QStringLiteral("最近的工程"));
  heading->setObjectName(QStringLiteral("welcomeHeading"));
  recent_->setObjectName(QStringLiteral("recentList"));
  recent_->setIconSize(QSize(24, 24));
  recent_->setContextMenuPolicy(Qt::CustomContextMenu);
  recent_->setTextElideMode(Qt::ElideMiddle);
  recent_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  none_->setText(QStringLiteral("还没有打开过工程。"));
  connect(recent_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
    emit recentRequested(item->data(Qt::UserRole).toString());
  });
  connect(recent_, &QWidget::customContextMenuRequested, this, &WelcomeView::showMenu);

  auto* column = new QVBoxLayout;
  column->setSpacing(12);
  column->addStretch(1);
  column->addWidget(title);
  column->addWidget(subtitle);
  column->addSpacing(12);
  column->addLayout(buttons);
  column->addSpacing(20);
  column->addWidget(heading);
  column->addWidget(none_);
  column->addWidget(recent_, 6);
  column->addStretch(1);

  auto* layout = new QHBoxLayout(this);
  layout->addStretch(1);
  layout->addLayout(column, 4);
  layout->addStretch(1);
}

void WelcomeView::setRecentFiles(const std::vector<RecentFile>& files) {
  recent_->clear();
  for (const RecentFile& file : files) {
    const QFileInfo info(file.path);
    auto* item = new QListWidgetItem(
        QIcon(QStringLiteral(":/qce/icons/project.svg")),
        info.completeBaseName() + QLatin1Char('\n') + QDir::toNativeSeparators(info.path()),
        recent_);
    item->setData(Qt::UserRole, file.path);
    item->setToolTip(QDir::toNativeSeparators(file.path));
    item->setSizeHint(QSize(0, 2 * recent_->fontMetrics().height() + 14));
  }
  recent_->setVisible(!files.empty());
  none_->setVisible(files.empty());
}

void WelcomeView::showMenu(const QPoint& at) {
  const QListWidgetItem* item = recent_->itemAt(at);
  if (item == nullptr) return;
  const QString path = item->data(Qt::UserRole).toString();
  QMenu menu;
  menu.addAction(QStringLiteral("打开"), this, [this, path] { emit recentRequested(path); });
  menu.addAction(QStringLiteral("从列表中移除"), this,
                 [this, path] { emit forgetRequested(path); });
  menu.exec(recent_->viewport()->mapToGlobal(at));
}

}  // namespace shell
