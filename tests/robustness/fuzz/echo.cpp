#include "fuzz.h"

#include "factory/linktest.h"
#include "factory/resultview.h"
#include "system/run/process.h"

#include <QApplication>
#include <QTextEdit>

namespace {
constexpr char rest = '\x7f'; // a length that means all remaining bytes

/// The result view of the factory window, without a screen.
QTextEdit *resultView()
{
    static int count = 1;
    static char name[] = "fuzz_echo";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(count, arguments);
    static QTextEdit view;
    return &view;
}

/// Splits the input into chunks. The first byte of each is its length.
QList<QByteArray> chunks(QByteArray input)
{
    QList<QByteArray> found;
    while (!input.isEmpty()) {
        const qsizetype length = input.front() == rest ? input.size() : quint8(input.front());
        found += input.mid(1, length);
        input = input.mid(1 + length);
    }
    return found;
}

QString lastLine(const QTextEdit *view)
{
    return view->toPlainText().section('\n', -1);
}

/// A serial echo is appended to the text.
void readSerial(QTextEdit *view, const QList<QByteArray> &input)
{
    const QString expected = serialPayload("/dev/ttyS0", linkTestCharacters);
    QString received;
    view->clear();
    for (const QByteArray &chunk : input) {
        received += byteText(chunk);
        showText(view, view->toPlainText() + byteText(chunk));
    }
    addVerdict(view, expected);
    require((lastLine(view) == "Test Ok!") == (received == expected));
}

/// Each chunk of a network echo starts a new paragraph.
void readEther(QTextEdit *view, const QList<QByteArray> &input)
{
    const QString expected = etherPayload(1, linkTestCharacters);
    QString received;
    view->clear();
    for (const QByteArray &chunk : input) {
        received += received.isEmpty() ? QString() : QString('\n');
        received += byteText(chunk);
        addParagraph(view, byteText(chunk));
    }
    addVerdict(view, expected);
    require((lastLine(view) == "Test Ok!") == (received == expected));
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QList<QByteArray> input = chunks(inputBytes(data, size));
    readSerial(resultView(), input);
    readEther(resultView(), input);
    return 0;
}
