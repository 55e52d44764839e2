// The platform layer on Linux (glibc).

#include "service/platform.hpp"

#include <langinfo.h>
#include <locale.h>
#include <nl_types.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zor::platform {

std::uint32_t get_env(const char* name, char* buffer, std::uint32_t size) {
    const char* value = std::getenv(name);
    if (size > 0) buffer[0] = '\0';
    if (value == nullptr || value[0] == '\0') return 0;
    const std::size_t length = std::strlen(value);
    if (length + 1 > size) return static_cast<std::uint32_t>(length + 1);
    std::memcpy(buffer, value, length + 1);
    return static_cast<std::uint32_t>(length);
}

// pthread keys are small integers; TlsIndex carries one.
bool tls_create(TlsIndex* index) {
    pthread_key_t key;
    if (pthread_key_create(&key, nullptr) != 0) return false;
    *index = static_cast<TlsIndex>(key);
    return true;
}

void tls_destroy(TlsIndex index) {
    pthread_key_delete(static_cast<pthread_key_t>(index));
}

void* tls_get(TlsIndex index) {
    return pthread_getspecific(static_cast<pthread_key_t>(index));
}

bool tls_set(TlsIndex index, void* value) {
    return pthread_setspecific(static_cast<pthread_key_t>(index), value) == 0;
}

std::uint64_t current_thread_id() {
    return static_cast<std::uint64_t>(gettid());
}

const char kCatalogFileName[] = "zor_msg.cat";

namespace {

struct LocaleId {
    const char* name;
    std::uint32_t lcid;
};

// Windows locale identifiers of the common POSIX locale names; a language without its territory
// maps to the language's primary locale.
constexpr LocaleId kLocaleIds[] = {
    {"en_US", 1033},  {"en_GB", 2057}, {"en_AU", 3081}, {"en_CA", 4105}, {"en_IE", 6153}, {"en_NZ", 5129},
    {"en_IN", 16393}, {"en", 1033},    {"de_DE", 1031}, {"de_AT", 3079}, {"de_CH", 2055}, {"de", 1031},
    {"fr_FR", 1036},  {"fr_BE", 2060}, {"fr_CA", 3084}, {"fr_CH", 4108}, {"fr", 1036},    {"es_ES", 3082},
    {"es_MX", 2058},  {"es", 3082},    {"it_IT", 1040}, {"it", 1040},    {"pt_BR", 1046}, {"pt_PT", 2070},
    {"pt", 2070},     {"nl_NL", 1043}, {"nl_BE", 2067}, {"nl", 1043},    {"sv_SE", 1053}, {"sv", 1053},
    {"da_DK", 1030},  {"da", 1030},    {"nb_NO", 1044}, {"nb", 1044},    {"fi_FI", 1035}, {"fi", 1035},
    {"pl_PL", 1045},  {"pl", 1045},    {"cs_CZ", 1029}, {"cs", 1029},    {"hu_HU", 1038}, {"hu", 1038},
    {"ru_RU", 1049},  {"ru", 1049},    {"uk_UA", 1058}, {"uk", 1058},    {"tr_TR", 1055}, {"tr", 1055},
    {"el_GR", 1032},  {"el", 1032},    {"ja_JP", 1041}, {"ja", 1041},    {"ko_KR", 1042}, {"ko", 1042},
    {"zh_CN", 2052},  {"zh_TW", 1028}, {"zh_HK", 3076}, {"zh", 2052},    {"he_IL", 1037}, {"he", 1037},
    {"ar_SA", 1025},  {"ar", 1025},    {"hi_IN", 1081}, {"hi", 1081},
};

// The locale identifier Windows gives a locale it does not name.
constexpr std::uint32_t kCustomUnspecifiedLocale = 0x1000;

const char* messages_locale_name() {
    locale_t current = uselocale(static_cast<locale_t>(nullptr));
#ifdef _NL_LOCALE_NAME
    if (current != LC_GLOBAL_LOCALE) return nl_langinfo_l(_NL_LOCALE_NAME(LC_MESSAGES), current);
#else
    (void)current;
#endif
    return setlocale(LC_MESSAGES, nullptr);
}

}  // namespace

std::uint32_t thread_locale() {
    const char* name = messages_locale_name();
    if (name == nullptr || name[0] == '\0' || std::strcmp(name, "C") == 0 ||
        std::strcmp(name, "POSIX") == 0 || std::strncmp(name, "C.", 2) == 0)
        return 1033;
    // "ll_CC.codeset@modifier": compare "ll_CC", then "ll".
    std::size_t length = std::strcspn(name, ".@");
    for (int pass = 0; pass < 2; ++pass) {
        for (const LocaleId& id : kLocaleIds) {
            if (std::strlen(id.name) == length && std::strncmp(id.name, name, length) == 0) return id.lcid;
        }
        length = std::strcspn(name, "_.@");
    }
    return kCustomUnspecifiedLocale;
}

void* load_catalog(const char* path) {
    nl_catd catalog = catopen(path, 0);
    return catalog == reinterpret_cast<nl_catd>(-1) ? nullptr : static_cast<void*>(catalog);
}

// An X/Open catalog keeps the messages of one language in the set numbered by its language
// identifier (set 1033 for US English). Its entries carry no line end; the copy gets the CR LF
// that every message-table entry ends with, so that both kinds of catalog read alike.
char* catalog_text(void* catalog, std::uint32_t number, std::uint32_t language) {
    const char* text =
        catgets(static_cast<nl_catd>(catalog), static_cast<int>(language), static_cast<int>(number), nullptr);
    if (text == nullptr) return nullptr;
    const std::size_t length = std::strlen(text);
    char* copy = static_cast<char*>(std::malloc(length + 3));
    if (copy != nullptr) {
        std::memcpy(copy, text, length);
        std::memcpy(copy + length, "\r\n", 3);
    }
    return copy;
}

void release_catalog_text(char* text) {
    std::free(text);
}

namespace {

// Processors online in the system, from the kernel's list such as "0-3,8-11".
std::uint64_t online_processors() {
    std::uint64_t mask = 0;
    if (FILE* file = std::fopen("/sys/devices/system/cpu/online", "r")) {
        char text[256] = {};
        const bool read = std::fgets(text, sizeof text, file) != nullptr;
        std::fclose(file);
        const char* p = text;
        while (read && *p >= '0' && *p <= '9') {
            char* end = nullptr;
            long first = std::strtol(p, &end, 10);
            long last = first;
            if (*end == '-') last = std::strtol(end + 1, &end, 10);
            for (long cpu = first; cpu <= last && cpu < 64; ++cpu) mask |= std::uint64_t{1} << cpu;
            p = (*end == ',') ? end + 1 : end;
        }
    }
    if (mask == 0) {
        const long count = sysconf(_SC_NPROCESSORS_ONLN);
        mask = count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (count > 0 ? count : 1)) - 1;
    }
    return mask;
}

}  // namespace

bool affinity_masks(std::uint64_t* process_mask, std::uint64_t* system_mask) {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) != 0) return false;
    std::uint64_t process = 0;
    for (int cpu = 0; cpu < 64; ++cpu) {
        if (CPU_ISSET(cpu, &set)) process |= std::uint64_t{1} << cpu;
    }
    *process_mask = process;
    *system_mask = online_processors();
    return true;
}

bool pin_current_thread(std::uint64_t mask) {
    cpu_set_t set;
    CPU_ZERO(&set);
    for (int cpu = 0; cpu < 64; ++cpu) {
        if (mask & (std::uint64_t{1} << cpu)) CPU_SET(cpu, &set);
    }
    return pthread_setaffinity_np(pthread_self(), sizeof set, &set) == 0;
}

void yield_thread() {
    sched_yield();
}

}  // namespace zor::platform
