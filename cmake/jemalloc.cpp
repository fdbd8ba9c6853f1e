// How the allocator is set up in programs that link it.

extern "C" {

// A document is hundreds of megabytes of nodes that point at one another: in large pages the processor finds them with
// far fewer page walks. Where the system gives none, nothing changes.
extern const char* malloc_conf;
const char* malloc_conf = "thp:always";
}
