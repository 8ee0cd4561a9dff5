// What the platform's identifier calls answer: parsing of case, braces, length and null, the
// text form's case, and the layout of the fields.
#include <windows.h>
#include <rpc.h>
#include <cstdio>

static void Parse(const wchar_t* text) {
    UUID u;
    memset(&u, 0xAB, sizeof u);
    RPC_STATUS s = UuidFromStringW((RPC_WSTR)text, &u);
    printf("%ls -> status %ld data1 %08lx data4[0] %02x\n", text ? text : L"(null)", (long)s,
           (unsigned long)u.Data1, u.Data4[0]);
}

int main() {
    Parse(L"00112233-4455-6677-8899-aabbccddeeff");
    Parse(L"00112233-4455-6677-8899-AABBCCDDEEFF");
    Parse(L"{00112233-4455-6677-8899-aabbccddeeff}");
    Parse(L"00112233-4455-6677-8899-aabbccddeef");
    Parse(L"00112233-4455-6677-8899-aabbccddeeff0");
    Parse(L"");
    Parse(nullptr);
    UUID u;
    UuidFromStringW((RPC_WSTR)L"00112233-4455-6677-8899-AABBCCDDEEFF", &u);
    RPC_WSTR text = nullptr;
    UuidToStringW(&u, &text);
    printf("text %ls\n", (wchar_t*)text);
    RpcStringFreeW(&text);
    unsigned char* b = (unsigned char*)&u;
    printf("bytes");
    for (int i = 0; i < 16; ++i)
        printf(" %02x", b[i]);
    printf("\n");
    return 0;
}
