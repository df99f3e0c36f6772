// Loaded before Wine's own libraries by scripts/wine-without-shm: keeps a program from sharing memory with the X server,
// so that pictures go to it through the socket.
//
// Why: with shared memory Wine's window driver, for each window that is shown, holds libX11's lock of the connection
// while it waits for the server's answer. Where the thread that draws the preview is reading from the connection then,
// and reads one of the X errors that Wine provokes and ignores (a device context of a window that was never shown), it
// waits for that lock: both wait for ever. About one file dialog in twenty stayed hidden beside a running preview
// (Wine 8, libX11 1.8.4).
#include <errno.h>
#include <stddef.h>

int shmget(int key, size_t size, int flags) {
    (void)key;
    (void)size;
    (void)flags;
    errno = ENOSYS;
    return -1;
}
