#include "filemapping.h"

#include "GuardedMemory.h"
#include "ProcessLevel.h"
#include "WarningsFail.h"

#include <QtTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

namespace {

constexpr int kPage = 4096;

/// A block of shared memory, as the system keeps it.
class Block : public QTemporaryFile
{
public:
    explicit Block(int bytes)
        : QTemporaryFile(QStringLiteral("/dev/shm/orbix-test-XXXXXX"))
    {
        if (!open() || !resize(bytes))
            qFatal("No shared memory");
    }
    QByteArray name() const { return QFileInfo(fileName()).fileName().toUtf8(); }
    int mappings() const
    {
        QFile maps(QStringLiteral("/proc/self/maps"));
        return maps.open(ReadOnly) ? maps.readAll().count(name()) : -1;
    }
};

HANDLE openBlock(const QByteArray &name)
{
    return OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, name.constData());
}

char *map(HANDLE handle)
{
    return static_cast<char *>(MapViewOfFile(handle, FILE_MAP_ALL_ACCESS, 0, 0, 0));
}

/// Runs in a process of its own: touches a page that is gone. The status is 42 from a handler.
[[noreturn]] void touchWhatIsGone(char *gone, bool isHandled, bool isWithinGuard)
{
    ::alarm(10); // ends a process that would touch it for ever
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    if (isHandled) {
        action.sa_flags = SA_SIGINFO;
        ::sigaddset(&action.sa_mask, SIGUSR1);
        action.sa_sigaction = [](int, siginfo_t *info, void *) {
            sigset_t blocked;
            ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
            ::_exit(info->si_code == BUS_ADRERR && ::sigismember(&blocked, SIGUSR1) ? 42 : 1);
        };
    }
    ::sigaction(SIGBUS, &action, nullptr);
    char here = 0;
    if (!GuardedMemory::write(gone - 1, &here, 1) || !GuardedMemory::store(gone - 2, 1)
        || !GuardedMemory::load(gone - 2) || GuardedMemory::read(&here, gone, 1))
        ::_exit(2);
    if (isWithinGuard)
        GuardedMemory::read(gone, &here, 1); // where it is copied to is not guarded
    else
        *static_cast<volatile char *>(gone) = 1;
    ::_exit(3);
}

} // namespace

class tst_filemapping : public WarningsFail
{
    Q_OBJECT

private slots:
    void signalsOfOthersGoToTheHandlerOfBefore();
    void whatIsNoBlockIsNotMapped();
    void aViewIsTheBlockItself();
    void onlyTheNumbersOfHandlesAreClosed();
    void memoryThatWasTakenAwayIsNeitherReadNorWritten();
    void memoryMayGoWhileItIsCopied();
};

/// This is first: the handler of before is that of the first guarded touch in a process.
void tst_filemapping::signalsOfOthersGoToTheHandlerOfBefore()
{
    Block block(2 * kPage);
    char *const view = map(openBlock(block.name()));
    QVERIFY(view && block.resize(kPage));
    for (const bool isHandled : {false, true}) {
        for (const bool isWithinGuard : {false, true}) {
            const pid_t child = ::fork();
            if (child == 0)
                touchWhatIsGone(view + kPage, isHandled, isWithinGuard);
            int status = 0;
            QCOMPARE(::waitpid(child, &status, 0), child);
            QCOMPARE(WIFEXITED(status) ? WEXITSTATUS(status) : 0, isHandled ? 42 : 0);
            QCOMPARE(WIFSIGNALED(status) ? WTERMSIG(status) : 0, isHandled ? 0 : SIGBUS);
        }
    }
    QVERIFY(UnmapViewOfFile(view));
}

void tst_filemapping::whatIsNoBlockIsNotMapped()
{
    const struct
    {
        const char *what; ///< begins the name
        mode_t mode;      ///< 0: there is nothing
        qint64 bytes;
    } rows[] = {{"", 0, 0},
                {"..", 0, 0},
                {"../shm/orbix-test", 0, 0},
                {"orbix-test-absent", 0, 0},
                {"orbix-test-folder", S_IFDIR | 0777, 0},
                {"orbix-test-pipe", S_IFIFO | 0666, 0},
                {"orbix-test-closed", S_IFREG, 1},
                {"orbix-test-read-only", S_IFREG | 0444, 1},
                {"orbix-test-empty", S_IFREG | 0666, 0},
                {"orbix-test-larger-than-memory", S_IFREG | 0666, 1LL << 60}};
    const int files = ProcessLevel::now().files;
    const uid_t user = ::geteuid();
    for (const auto &[what, mode, bytes] : rows) {
        const QByteArray name = mode == 0 ? QByteArray(what)
                                          : what + QByteArray::number(::getpid());
        const QByteArray path = "/dev/shm/" + name;
        if (mode != 0)
            QCOMPARE(S_ISDIR(mode) ? ::mkdir(path, 0700) : ::mknod(path, (mode & S_IFMT) | 0600, 0),
                     0);
        const auto removal = qScopeGuard([&path, mode = mode] {
            if (mode != 0)
                ::remove(path);
        });
        QVERIFY(bytes == 0 || ::truncate(path, bytes) == 0);
        QVERIFY(mode == 0 || ::chmod(path, mode & 0777) == 0);
        QVERIFY(user != 0 || ::seteuid(65534) == 0); // root may open all
        const HANDLE handle = openBlock(name);
        QCOMPARE(::seteuid(user), 0);
        const bool isMapped = map(handle);
        CloseHandle(handle);
        QVERIFY2(!isMapped, what);
    }
    QCOMPARE(ProcessLevel::now().files, files);
}

void tst_filemapping::aViewIsTheBlockItself()
{
    Block block(kPage + 1);
    uchar *const other = block.map(0, kPage + 1);
    const int mappings = block.mappings();
    char *const view = map(openBlock(block.name()));
    QVERIFY(view);
    QCOMPARE(viewLength(view), size_t(kPage + 1));
    view[kPage] = 'a';
    QCOMPARE(other[kPage], uchar('a'));
    other[0] = 'b';
    QCOMPARE(view[0], 'b');
    for (void *noView : {static_cast<void *>(other), static_cast<void *>(view + kPage)})
        QVERIFY(!UnmapViewOfFile(noView));
    QCOMPARE(block.mappings(), mappings + 1);
    QVERIFY(UnmapViewOfFile(view));
    QVERIFY(!UnmapViewOfFile(view));
    QCOMPARE(block.mappings(), mappings);
}

void tst_filemapping::onlyTheNumbersOfHandlesAreClosed()
{
    const Block block(kPage);
    const int files = ProcessLevel::now().files;
    char *const view = map(openBlock(block.name())); // its handle is used up
    const HANDLE opened = openBlock(block.name());
    QCOMPARE(ProcessLevel::now().files, files + 1);
    for (HANDLE number = 0; number < 1000; ++number)
        QCOMPARE(CloseHandle(number), number == opened);
    QCOMPARE(ProcessLevel::now().files, files);
    QVERIFY(!map(opened));
    const HANDLE later = openBlock(block.name());
    QVERIFY(later != opened && CloseHandle(later));
    QVERIFY(UnmapViewOfFile(view));
}

void tst_filemapping::memoryThatWasTakenAwayIsNeitherReadNorWritten()
{
    Block block(2 * kPage);
    char *const view = map(openBlock(block.name()));
    char *const at = view + kPage - 2; // over the border of the pages
    for (const int bytes : {0, kPage, 2 * kPage, kPage, 2 * kPage}) {
        QVERIFY(block.resize(bytes));
        quint32 word = 0x44332211;
        QCOMPARE(GuardedMemory::write(at, &word, 4), bytes > kPage);
        QCOMPARE(GuardedMemory::read(&word, at, 4), bytes > kPage);
        QCOMPARE(GuardedMemory::store(at, 0x6655), bytes > 0);
        QCOMPARE(GuardedMemory::load(at).value_or(1), quint16(bytes > 0 ? 0x6655 : 1));
        QCOMPARE(GuardedMemory::store(at + 2, 0x8877), bytes > kPage);
        QCOMPARE(GuardedMemory::load(at + 2).value_or(1), quint16(bytes > kPage ? 0x8877 : 1));
    }
    QVERIFY(UnmapViewOfFile(view));
}

void tst_filemapping::memoryMayGoWhileItIsCopied()
{
    constexpr int kBytes = 1024 * kPage;
    Block block(kBytes);
    char *const view = map(openBlock(block.name()));
    QByteArray copy(kBytes, Qt::Uninitialized);
    char *const middle = copy.data() + kBytes / 2; // a copy may begin at either end
    std::atomic<bool> isDone{false};
    std::thread writer([&] {
        while (!isDone) {
            block.resize(kBytes);
            while (__atomic_load_n(middle, __ATOMIC_RELAXED) == 'x' && !isDone)
                std::this_thread::yield();
            block.resize(kPage);
        }
    });
    int cuts = 0;
    for (QDeadlineTimer timer(60000); cuts < 10 && !timer.hasExpired();) {
        __atomic_store_n(middle, 'x', __ATOMIC_RELAXED);
        if (!GuardedMemory::read(copy.data(), view, kBytes) && *middle != 'x')
            ++cuts;
    }
    isDone = true;
    writer.join();
    QCOMPARE(cuts, 10);
    QVERIFY(block.resize(kBytes));
    QVERIFY(GuardedMemory::read(copy.data(), view, kBytes));
    QVERIFY(UnmapViewOfFile(view));
}

QTEST_GUILESS_MAIN(tst_filemapping)
#include "tst_filemapping.moc"
