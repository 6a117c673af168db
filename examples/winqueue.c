/* Worker threads that share a queue, in processes that share a total:

     winqueue MUTEX TOTAL LIST   adds up the sizes of all files whose names are in a list
     winqueue MUTEX hold         takes the mutex and keeps it until the process is killed

   A program as it is written for Windows. It needs <windows.h>, <stdio.h> and <string.h> and
   nothing else. The queue is guarded by a mutex without a name, and events wake who waits for it.
   The total is in a file that every process reads, changes and writes under the named mutex. */

#include <windows.h>

#include <stdio.h>
#include <string.h>

#define WORKERS 4
#define ROOM 8        /* names in the queue */
#define NAME_SIZE 256 /* bytes of a name, with the zero */
#define BLOCK_SIZE 4096

typedef struct {
    char names[ROOM][NAME_SIZE];
    int first, count;
    BOOL closed;   /* nothing more will come */
    HANDLE guard;  /* a mutex: for the fields above */
    HANDLE filled; /* an event: there is a name, or the queue is closed */
    HANDLE taken;  /* an event: there is room again */
} Queue;

typedef struct {
    Queue* queue;
    HANDLE totalGuard; /* the mutex of all processes */
    const char* total;
    HANDLE done; /* an event, signalled as the worker's last act */
    int files;
    BOOL failed;
} Worker;

static BOOL openQueue(Queue* queue) {
    memset(queue, 0, sizeof *queue);
    queue->guard = CreateMutex(NULL, FALSE, NULL);
    queue->filled = CreateEvent(NULL, FALSE, FALSE, NULL);
    queue->taken = CreateEvent(NULL, FALSE, FALSE, NULL);
    return queue->guard && queue->filled && queue->taken;
}

/* The name is copied. Null ends the queue. */
static void put(Queue* queue, const char* name) {
    for (;;) {
        WaitForSingleObject(queue->guard, INFINITE);
        if (!name || queue->count < ROOM)
            break;
        ReleaseMutex(queue->guard);
        WaitForSingleObject(queue->taken, INFINITE);
    }
    if (name)
        strcpy(queue->names[(queue->first + queue->count++) % ROOM], name);
    else
        queue->closed = TRUE;
    ReleaseMutex(queue->guard);
    SetEvent(queue->filled);
}

/* False when the queue is empty and ended. An event wakes one thread, which wakes the next one if
   there is something left for it. */
static BOOL get(Queue* queue, char* name) {
    BOOL got, more;
    for (;;) {
        WaitForSingleObject(queue->guard, INFINITE);
        if (queue->count > 0 || queue->closed)
            break;
        ReleaseMutex(queue->guard);
        WaitForSingleObject(queue->filled, INFINITE);
    }
    got = queue->count > 0;
    if (got) {
        strcpy(name, queue->names[queue->first]);
        queue->first = (queue->first + 1) % ROOM;
        --queue->count;
    }
    more = queue->count > 0 || queue->closed;
    ReleaseMutex(queue->guard);
    if (more)
        SetEvent(queue->filled);
    if (got)
        SetEvent(queue->taken);
    return got;
}

static HANDLE openFile(const char* name, DWORD access, DWORD how) {
    HANDLE file = CreateFile(name, access, FILE_SHARE_READ, NULL, how, 0, NULL);
    return file == INVALID_HANDLE_VALUE ? NULL : file;
}

static BOOL countBytes(const char* name, unsigned long* bytes) {
    char buffer[BLOCK_SIZE];
    HANDLE file = openFile(name, GENERIC_READ, OPEN_EXISTING);
    BOOL good = file != NULL;
    DWORD got = 1;
    *bytes = 0;
    while (good && got > 0) {
        good = ReadFile(file, buffer, sizeof buffer, &got, NULL);
        *bytes += got;
    }
    if (file)
        CloseHandle(file);
    return good;
}

/* Without the mutex of all processes, what another one adds meanwhile would be lost. */
static BOOL addToTotal(const char* name, unsigned long bytes) {
    char text[64] = "";
    unsigned long files = 0, sum = 0;
    DWORD length = 0;
    BOOL good;
    HANDLE file = openFile(name, GENERIC_READ, OPEN_EXISTING);
    if (file) {
        ReadFile(file, text, sizeof text - 1, &length, NULL);
        CloseHandle(file);
        sscanf(text, "%lu files, %lu bytes", &files, &sum);
    }
    sprintf(text, "%lu files, %lu bytes\n", files + 1, sum + bytes);
    file = openFile(name, GENERIC_WRITE, CREATE_ALWAYS);
    good = file && WriteFile(file, text, (DWORD)strlen(text), &length, NULL);
    if (file)
        CloseHandle(file);
    return good;
}

static DWORD WINAPI work(LPVOID parameter) {
    Worker* worker = parameter;
    char name[NAME_SIZE];
    while (get(worker->queue, name)) {
        unsigned long bytes;
        BOOL good = countBytes(name, &bytes);
        if (good) {
            WaitForSingleObject(worker->totalGuard, INFINITE);
            good = addToTotal(worker->total, bytes);
            ReleaseMutex(worker->totalGuard);
        }
        if (good)
            ++worker->files;
        else
            worker->failed = TRUE;
    }
    SetEvent(worker->done);
    return 0;
}

static BOOL start(Worker* worker, Queue* queue, HANDLE totalGuard, const char* total) {
    HANDLE thread;
    memset(worker, 0, sizeof *worker);
    worker->queue = queue;
    worker->totalGuard = totalGuard;
    worker->total = total;
    worker->done = CreateEvent(NULL, FALSE, FALSE, NULL);
    thread = worker->done ? CreateThread(NULL, 0, work, worker, 0, NULL) : NULL;
    if (thread)
        CloseHandle(thread); /* it goes on */
    return thread != NULL;
}

static void putAll(Queue* queue, FILE* list) {
    char name[NAME_SIZE];
    while (fgets(name, sizeof name, list)) {
        name[strcspn(name, "\r\n")] = '\0';
        put(queue, name);
    }
}

static BOOL waitForEnd(Worker* worker, int number) {
    WaitForSingleObject(worker->done, INFINITE);
    CloseHandle(worker->done);
    printf("worker %d added %d files\n", number, worker->files);
    return !worker->failed;
}

static BOOL countFiles(HANDLE totalGuard, const char* total, FILE* list) {
    Queue queue;
    Worker workers[WORKERS];
    BOOL good;
    int started = 0, i;
    if (!openQueue(&queue))
        return FALSE;
    while (started < WORKERS && start(&workers[started], &queue, totalGuard, total))
        ++started;
    good = started > 0;
    if (good)
        putAll(&queue, list);
    put(&queue, NULL);
    for (i = 0; i < started; ++i)
        good = waitForEnd(&workers[i], i + 1) && good;
    CloseHandle(queue.guard);
    CloseHandle(queue.filled);
    CloseHandle(queue.taken);
    return good;
}

static int hold(HANDLE mutex) {
    HANDLE never = CreateEvent(NULL, FALSE, FALSE, NULL);
    WaitForSingleObject(mutex, INFINITE);
    puts("holding");
    fflush(stdout);
    WaitForSingleObject(never, INFINITE);
    return 1;
}

static int countList(HANDLE mutex, const char* total, const char* listName) {
    FILE* list = fopen(listName, "r");
    BOOL good = list && countFiles(mutex, total, list);
    if (!good)
        fprintf(stderr, "winqueue: not all of %s could be added up\n", listName);
    if (list)
        fclose(list);
    return good ? 0 : 1;
}

int main(int argc, char** argv) {
    HANDLE mutex;
    int result;
    if (argc != 4 && (argc != 3 || strcmp(argv[2], "hold") != 0)) {
        fprintf(stderr, "usage: winqueue MUTEX TOTAL LIST | winqueue MUTEX hold\n");
        return 2;
    }
    mutex = CreateMutex(NULL, FALSE, argv[1]);
    if (!mutex) {
        fprintf(stderr, "winqueue: no mutex %s (error %lu)\n", argv[1],
                (unsigned long)GetLastError());
        return 1;
    }
    result = argc == 3 ? hold(mutex) : countList(mutex, argv[2], argv[3]);
    CloseHandle(mutex);
    return result;
}
