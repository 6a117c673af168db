// Loses memory that Qt allocated: LeakSanitizer must see it.

#include <QByteArray>

#include <new>

int main() {
    alignas(QByteArray) unsigned char place[sizeof(QByteArray)];
    for (int i = 0; i < 10; ++i)
        new (place) QByteArray(1000, 'x'); // over the one before, which is never destroyed
    return 0;
}
