#include "shell/pagename.h"

#include <QTest>

class TestPageName : public QObject
{
    Q_OBJECT
private slots:
    void readsIndex_data();
    void readsIndex();
    void namesButtons();
};

void TestPageName::readsIndex_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::newRow("page") << "Ethernet:3" << 3;
    QTest::newRow("two digits") << "Install Fonts:11" << 11;
    QTest::newRow("no colon") << "Ethernet" << 0;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("not a number") << "Ethernet:x" << 0;
    QTest::newRow("nothing after the colon") << "Ethernet:" << 0;
    QTest::newRow("second part of three") << "a:4:9" << 4;
    QTest::newRow("empty second part") << "a::9" << 0;
}

void TestPageName::readsIndex()
{
    QFETCH(QString, name);
    QFETCH(int, index);
    QCOMPARE(pageIndexFromName(name), index);
}

void TestPageName::namesButtons()
{
    QCOMPARE(pageButtonName("Ethernet", 3), QString("Ethernet:3"));
    QCOMPARE(pageIndexFromName(pageButtonName("Install Fonts", 11)), 11);
}

QTEST_GUILESS_MAIN(TestPageName)
#include "tst_pagename.moc"
