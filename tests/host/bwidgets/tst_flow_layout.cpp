#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

#include "host/bwidgets/flow_layout.h"

using bwidgets::FlowLayout;

class FlowLayoutTest : public QObject {
  Q_OBJECT

 private slots:
  void goesOnInTheNextRow() {
    QWidget window;
    auto* flow = new FlowLayout;
    auto* below = new QWidget;
    auto* all = new QVBoxLayout(&window);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    all->addLayout(flow);
    all->addWidget(below, 1);
    QList<QWidget*> items;
    for (const int height : {20, 20, 30, 20}) {
      auto* item = new QWidget;
      item->setFixedSize(100, height);
      flow->addWidget(item);
      items << item;
    }
    items[1]->hide();
    QCOMPARE(flow->sizeHint(), QSize(308, 30));
    const auto places = [&](int width) {
      window.resize(width, 200);
      QStringList text;
      for (const QWidget* item : items) {
        if (item->isVisible()) text << QString("%1,%2").arg(item->x()).arg(item->y());
      }
      return text.join(' ') + QString(" | %1").arg(below->y());
    };
    window.show();
    QCOMPARE(places(400), QString("0,5 104,0 208,5 | 30"));
    QCOMPARE(places(307), QString("0,5 104,0 0,34 | 54"));
    QCOMPARE(places(150), QString("0,0 0,24 0,58 | 78"));
    items[1]->show();
    QTRY_COMPARE(places(308), QString("0,5 104,5 208,0 0,34 | 54"));
    QVERIFY(window.minimumSizeHint().width() <= 100);  // a long row keeps no window wide
  }
};

QTEST_MAIN(FlowLayoutTest)
#include "tst_flow_layout.moc"
