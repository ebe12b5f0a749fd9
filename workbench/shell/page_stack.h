#pragma once

#include <QIcon>
#include <QString>
#include <QWidget>
#include <vector>

class QListWidget;
class QSplitter;
class QStackedWidget;

namespace abst {
class BaseView;
}

namespace shell {

/// The pages of an open project behind a list of their names: at most one page is active.
///
/// Moving on deactivates the old page before it activates the new one. The pages' widgets become
/// children; take them out with clear() before the models that they show go away.
class PageStack : public QWidget {
  Q_OBJECT

 public:
  explicit PageStack(QWidget* parent = nullptr);
  ~PageStack() override;

  /// Appends a page. `view` is not owned: it is the widget or lives as long.
  void addPage(const QString& key, const QString& title, const QIcon& icon, QWidget* widget,
               abst::BaseView* view);
  /// Deactivates the current page and destroys all pages.
  void clear();

  /// Goes to the page with this key; false when there is none.
  bool setCurrentPage(const QString& key);
  QString currentPage() const;  ///< key; empty when no page is active
  QStringList pages() const;    ///< keys in order
  QWidget* currentWidget() const;
  abst::BaseView* currentView() const;

  QByteArray saveLayout() const;
  void restoreLayout(const QByteArray& layout);

 signals:
  void currentPageChanged(const QString& key);

 private:
  struct Page {
    QString key;
    QWidget* widget;
    abst::BaseView* view;
  };

  void goTo(int number);

  std::vector<Page> pages_;
  int current_ = -1;
  QListWidget* list_;
  QStackedWidget* stack_;
  QSplitter* splitter_;
};

}  // namespace shell
