#include "system/textcodec.h"

#include <QTest>

class TestTextCodec : public QObject
{
    Q_OBJECT
private slots:
    void survivesARoundTrip_data();
    void survivesARoundTrip();
    void everyPairOfBytesSurvivesARoundTrip();
    void encodesOtherTextAsUtf8();
    void argumentsKeepTheirBytes();
};

void TestTextCodec::survivesARoundTrip_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const QChar e9(char16_t(0xDCE9));
    const QChar ff(char16_t(0xDCFF));
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("ASCII") << QByteArray("abc=1") << "abc=1";
    QTest::newRow("control character") << QByteArray("\x01") << QString(QChar(1));
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QString::fromUtf8("a\0b", 3);
    QTest::newRow("UTF-8") << QByteArray("gr\xC3\xB6\xC3\x9F"
                                         "e")
                           << QString::fromUtf8("größe");
    QTest::newRow("four bytes") << QByteArray("\xF0\x9F\x94\x86") << QString::fromUtf8("🔆");
    QTest::newRow("Latin-1") << QByteArray("caf\xE9") << QString("caf") + e9;
    QTest::newRow("Latin-1 before UTF-8")
        << QByteArray("\xE9\xC3\xA9") << QString(e9) + QString::fromUtf8("é");
    QTest::newRow("truncated sequence") << QByteArray("\xC3") << QString(QChar(char16_t(0xDCC3)));
    QTest::newRow("invalid bytes") << QByteArray("\xFF\xFF") << QString(ff) + ff;
    // Next to an invalid byte, the decoder reads each character by itself.
    for (const char32_t character :
         {U'\u0080', U'\u07FF', U'\u0800', U'\u0FFF', U'\uFFFD', U'\U00010000', U'\U0010FFFF'}) {
        const QString text = QString::fromUcs4(&character, 1);
        QTest::addRow("U+%X beside Latin-1", unsigned(character))
            << "\xE9" + text.toUtf8() << e9 + text;
    }
    QTest::newRow("UTF-8 of a surrogate")
        << QByteArray("\xED\xB3\xA9")
        << QString(QChar(char16_t(0xDCED))) + QChar(char16_t(0xDCB3)) + QChar(char16_t(0xDCA9));
    QTest::newRow("character before a truncated one")
        << QByteArray("\xF0\x9F\x94\x86\xF0") << QString::fromUtf8("🔆") + QChar(char16_t(0xDCF0));
}

void TestTextCodec::survivesARoundTrip()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(textFromBytes(bytes), text);
    QCOMPARE(bytesFromText(text), bytes);
}

void TestTextCodec::everyPairOfBytesSurvivesARoundTrip()
{
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const QByteArray bytes{QByteArray(1, char(first)) + char(second)};
            QCOMPARE(bytesFromText(textFromBytes(bytes)), bytes);
        }
    }
    const QByteArray mark("\xEF\xBB\xBFx"); // QString::fromUtf8() drops a byte order mark
    QCOMPARE(bytesFromText(textFromBytes(mark)), mark);
}

void TestTextCodec::encodesOtherTextAsUtf8()
{
    QCOMPARE(bytesFromText(QString::fromUtf8("größe 🔆")), QByteArray("größe 🔆"));
}

void TestTextCodec::argumentsKeepTheirBytes()
{
    const char *const arguments[] = {"name", "-x", "caf\xE9"};
    QCOMPARE(argumentTexts(3, arguments),
             (QStringList{"-x", QString("caf") + QChar(char16_t(0xDCE9))}));
    QCOMPARE(argumentTexts(0, arguments), QStringList());
}

QTEST_GUILESS_MAIN(TestTextCodec)
#include "tst_textcodec.moc"
