// Writes behind a buffer that Qt allocated: AddressSanitizer must see it.

#include <QByteArray>

int main() {
    QByteArray text(100, 'x');
    volatile char* bytes = text.data();
    bytes[text.capacity() + 100] = 'y';
    return 0;
}
