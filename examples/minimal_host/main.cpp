// The smallest host: three lines of an estimate in one page, with edit and undo.

#include <QAction>
#include <QApplication>
#include <QDoubleSpinBox>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QTextStream>
#include <QTreeView>

#include "history.h"
#include "lines.h"
#include "page.h"

namespace {

/// Messages of the module appear in the status bar.
class StatusChannel : public app::Channel {
 public:
  explicit StatusChannel(QStatusBar* bar) : bar_(bar) {}
  int message(const std::string& text, int buttons) override {
    bar_->showMessage(QString::fromStdString(text));
    return buttons & -buttons;
  }

 private:
  QStatusBar* bar_;
};

/// Types a quantity into the first line as a user would, undoes it, and tells whether the page
/// showed what it should at each step.
bool checkEditAndUndo(LinesPage& page, QAction& undo) {
  QTreeView* grid = page.grid();
  const QAbstractItemModel* model = grid->model();
  const QModelIndex quantity = model->index(0, 2);
  const auto shown = [&] {
    return quantity.data().toString() + '|' + model->index(0, 4).data().toString();
  };
  QStringList steps{shown()};
  grid->setCurrentIndex(quantity);
  grid->edit(quantity);
  if (auto* editor = grid->findChild<QDoubleSpinBox*>()) {
    editor->setValue(200);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(editor, &press);
    QApplication::processEvents();
  }
  steps << shown();
  undo.trigger();
  steps << shown();
  QTextStream(stdout) << steps.join('\n') << '\n';
  return steps == QStringList{"120.500|62,660.00", "200.000|104,000.00", "120.500|62,660.00"};
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("最小宿主程序");
  window.resize(760, 320);

  History history;
  StatusChannel channel(window.statusBar());
  app::Services services;
  services.undo = &history;
  services.channel = &channel;
  services.qceChannel = &channel;
  app::InstallServices(services);

  scoped_refptr<Lines> lines(new Lines);
  lines->add("C30 混凝土基础", "m³", 120.5, 520);
  lines->add("HRB400 钢筋", "t", 18.254, 4380.5);
  lines->add("MU10 砖墙", "m³", 64, 486.25);
  domain::DisplayTable table;
  addColumns(table);
  LinesOperator op(*lines, history);

  LinesModel model;
  model.setDisplayTable(&table);
  model.setOperator(&op);
  op.changed = [&](proxy::Element* line) { model.announceLine(line); };

  auto* page = new LinesPage(&window);
  page->setModel(&model);
  window.setCentralWidget(page);
  QAction* undo = window.menuBar()->addMenu("编辑")->addAction("撤销");
  undo->setShortcut(QKeySequence::Undo);
  QObject::connect(undo, &QAction::triggered, [&] { history.undo(); });
  window.show();
  page->activate();

  if (application.arguments().contains("--check")) {
    return checkEditAndUndo(*page, *undo) ? 0 : 1;
  }
  const int status = QApplication::exec();
  page->deactivate();
  return status;
}
