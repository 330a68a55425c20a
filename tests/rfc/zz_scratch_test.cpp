#pragma GCC diagnostic ignored "-Wmisleading-indentation"
#include <functional>

#include <gtest/gtest.h>

#include "atr/ATRATLST.h"
#include "gma/GMAMHDRT.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCMptDa.h"
#include "rfc/RFCQprDa.h"
#include "rfc/Support.h"
#include "rfc/rfcpart.h"
#include "rfc/rfcread.h"
#include "rfc/rfcsym.h"
#include "rfc/rfctable.h"
#include "rfc/rfctoken.h"
#include "rfc/rfcvalue.h"
#include "rfc/rfcwrite.h"
using namespace rfctest;
using std::string;
namespace {
string low(string s) {
  for (char& c : s)
    if (c >= 'A' && c <= 'Z')
      c = char(c + 32);
  return s;
}
bool lwsp(char c) {
  return c == ' ' || c == '\t';
}
bool ctl(char c) {
  unsigned char u = (unsigned char)c;
  return u < 32 || u == 127;
}
bool space(char c) {
  return c == ' ' || (c >= 9 && c <= 13);
}
// --- lines
struct Rd {
  string t;
  size_t p = 0;
  bool line(size_t max, string& out) {
    out.clear();
    if (p >= t.size())
      return false;
    size_t n = 0;
    while (p < t.size() && n < max && t[p] != '\r' && t[p] != '\n') {
      out += t[p++];
      ++n;
    }
    if (p < t.size() && (t[p] == '\r' || t[p] == '\n')) {
      char f = t[p++];
      if (p < t.size() && (t[p] == '\r' || t[p] == '\n') && t[p] != f)
        ++p;
    }
    string o2;
    for (char c : out)
      if (c)
        o2 += c;
    bool had = !out.empty();
    (void)had;
    out = o2;
    return true;
  }
};
bool readField(Rd& r, size_t L, string& name, std::vector<string>& v) {
  name.clear();
  v.clear();
  size_t start = r.p;
  unsigned bad = 0;
  bool have = false;
  string s;
  while (true) {
    size_t ls = r.p;
    if (!r.line(L, s))
      break;
    bool blank = true;
    for (char c : s)
      if (!space(c))
        blank = false;
    if (blank) {
      r.p = ls;
      break;
    }
    size_t c = s.find(':');
    bool wf = c != string::npos && c > 0;
    if (wf)
      for (size_t i = 0; i < c; i++)
        if (ctl(s[i]) || lwsp(s[i]))
          wf = false;
    if (wf) {
      if (!have) {
        have = true;
        name = s.substr(0, c);
        v.push_back(s.substr(c + 1));
      } else {
        r.p = ls;
        break;
      }
    } else if (lwsp(s[0])) {
      if (!have) {
        have = true;
        name = "Bad-Header";
        v.push_back(s);
        bad++;
      } else {
        v.push_back(s);
        if (name == "Bad-Header")
          bad++;
      }
    } else if (c != string::npos && c < 16) {
      if (!have) {
        have = true;
        name = "Bad-Header";
        v.push_back(s);
        bad++;
      } else {
        r.p = ls;
        break;
      }
    } else {
      if (!have) {
        have = true;
        name = "Bad-Header";
        v.push_back(s);
        bad = 1;
      } else if (name != "Bad-Header") {
        v[0] = name + ":" + v[0];
        name = "Bad-Header";
        v.push_back(s);
        bad = unsigned(v.size());
      } else {
        v.push_back(s);
        bad++;
      }
    }
    if (bad > 10) {
      name.clear();
      v.clear();
      r.p = start;
      return false;
    }
  }
  return have;
}
string unfold(const std::vector<string>& v) {
  string r;
  for (const string& l : v) {
    if (r.empty()) {
      r = l;
      continue;
    }
    if (l.empty())
      continue;
    bool q = false;
    if (r.back() == '\\') {
      int n = 0;
      for (size_t i = 0; i + 1 < r.size(); i++)
        if (r[i] == '"' && (i == 0 || r[i - 1] != '\\'))
          n++;
      q = n % 2 == 1;
    }
    if (q) {
      r.pop_back();
      r += "\r\n";
      r += l.substr(1);
    } else {
      r += l[0];
      r += l;
    }
  }
  return r;
}
string trim(string s) {
  while (!s.empty() && space(s.back()))
    s.pop_back();
  while (!s.empty() && space(s[0]))
    s.erase(0, 1);
  return s;
}
bool repair(string& s) {
  bool r = false;
  if (s.empty())
    return false;
  if (low(s) == "unknown") {
    s = "application/octet-stream";
    r = true;
  }
  if (low(s) == "text") {
    s = "text/plain";
    r = true;
  }
  if (!s.empty() && s.back() == ';') {
    s.pop_back();
    r = true;
  }
  if (low(s) == "text/plain charset=\"us-ascii\"") {
    s = "text/plain; charset=\"us-ascii\"";
    r = true;
  }
  size_t p = low(s).find("charset-us-ascii");
  if (p != string::npos) {
    s[p + 7] = '=';
    r = true;
  }
  p = low(s).find("\"us-ascii");
  if (p != string::npos && (p + 9 >= s.size() || s[p + 9] != '"')) {
    s.erase(p, 1);
    r = true;
  }
  p = low(s).find("message-delivery-status");
  if (p != string::npos) {
    s[p + 7] = '/';
    r = true;
  }
  p = low(s).find("application\\octet-stream");
  if (p != string::npos) {
    s[p + 11] = '/';
    r = true;
  }
  return r;
}
struct H {
  unsigned t;
  string n;
  std::vector<string> v;
};
string headersRef(const string& text) {
  Rd r{text};
  std::vector<H> T;
  size_t C = 0, P = 0;
  unsigned bad = 0;
  bool found = false;
  string n;
  std::vector<string> v;
  while (bad < 4) {
    if (!readField(r, 1087, n, v))
      break;
    unsigned t = rfc_header_type(n.c_str());
    auto dg = [](char c) { return c >= '0' && c <= '9'; };
    if (t == 82) {
      T.push_back({82, "", v});
      bad++;
    } else if (t == 46 && v.size() == 1 && n.size() == 2 && dg(n[0]) && dg(n[1]) &&
               v[0].size() > 10 && dg(v[0][0]) && dg(v[0][1]) && dg(v[0][3]) && dg(v[0][4]) &&
               v[0][2] == ':') {
      T.push_back({82, "", {n + ":" + v[0]}});
      bad++;
    } else {
      T.push_back({t, (t == 46 || t == 83 || t == 86) ? n : "", v});
      found = true;
      bad = 0;
      C = T.size();
      P = r.p;
    }
  }
  for (H& h : T)
    if (h.t == 78) {
      string s = trim(unfold(h.v));
      if (repair(s))
        h = {78, "", {s}};
      break;
    }
  if (bad == 4) {
    r.p = P;
    T.resize(C);
  }
  string o;
  for (H& h : T) {
    o += std::to_string(h.t) + " " + h.n + "|";
    for (auto& l : h.v)
      o += l + "|";
    o += "\n";
  }
  return o + "found " + std::to_string(found) + " rest " + text.substr(r.p);
}
string headersGot(DAC_BaseDataAccess& o) {
  GMA_MhdrTable t;
  unsigned s = 0;
  int f = rfc_read_headers(o, t, s);
  return print(t) + "found " + std::to_string(f) + (s ? " status" : "") + " rest " + restOf(o);
}

TEST(Scratch, Headers) {
  Dice d(77);
  const string ln(1080, 'n'), lv(1084, 'v'), sp(1090, ' ');
  for (int i = 0; i < 20000; i++) {
    string t = d.text({"To:",
                       "X-1: ",
                       " a",
                       "\tb",
                       "c ",
                       ":",
                       "\n",
                       "\r\n",
                       "\n\r",
                       "\r",
                       "\n",
                       "\r\n",
                       std::string_view("\0", 1),
                       ln,
                       lv,
                       sp,
                       "10:23:45 it began",
                       "Content-Type: text;",
                       "Content-Type: text/plain; charset=\"us-ascii",
                       "Bad-Header: x",
                       "\\",
                       "\"",
                       "\n",
                       "\n",
                       "bad line\n",
                       "aaaaaaaaaaaaaaaaaaa: b\n",
                       "a b: c\n",
                       "a b: c\n"},
                      34);
    string e = headersRef(t);
    ASSERT_EQ(headersGot(*inMemory(t)), e) << t;
    ASSERT_EQ(headersGot(*inBlocks(t, d.below(9))), e) << t;
  }
}
TEST(Scratch, Unfold) {
  Dice d(5);
  for (int i = 0; i < 20000; i++) {
    SCL_StringTable t;
    std::vector<string> v;
    size_t n = d.below(5);
    for (size_t k = 0; k < n; k++) {
      v.push_back(d.text({" ", "\\", "\"", "a", "\t"}, 6));
      t.add(v.back().c_str());
    }
    ASSERT_EQ(string(rfc_unfold(t).c_str()), unfold(v));
  }
}
TEST(Scratch, Repair) {
  Dice d(6);
  for (int i = 0; i < 30000; i++) {
    string s = d.text({"text", "unknown", ";", "text/plain charset=\"us-ascii\"",
                       "CHARSET-us-ascii", "\"us-ASCII", "\"", "message-delivery-status", "message",
                       "application\\octet-stream", " ", "/plain", "us-ascii"},
                      4);
    SCL_String g(s.c_str());
    string e = s;
    bool r = repair(e);
    bool q = rfc_repair_content_type(g);
    ASSERT_EQ(q, r) << s;
    ASSERT_EQ(string(g.c_str()), e) << s;
  }
}
struct Tok {
  unsigned k;
  string t;
};
unsigned tokRef(const string& s, int mode, bool keep, std::vector<Tok>& o) {
  o.clear();
  size_t p = 0;
  string sp = mode ? "()<>@,;:\\\".[]" : "()<>@,;:\\\"/[]?=";
  while (true) {
    while (p < s.size() && (ctl(s[p]) || lwsp(s[p])))
      p++;
    if (p >= s.size())
      return 0;
    char c = s[p];
    string t;
    unsigned k;
    if (c == '(') {
      k = 3;
      int dep = 0;
      bool ok = false;
      while (p < s.size()) {
        char x = s[p++];
        t += x;
        if (x == '\\') {
          if (p < s.size())
            t += s[p++];
          else
            break;
        } else if (x == '(')
          dep++;
        else if (x == ')' && --dep == 0) {
          ok = true;
          break;
        }
      }
      if (!ok)
        return 12003;
    } else if (c == '"') {
      k = 1;
      t += s[p++];
      bool ok = false;
      while (p < s.size()) {
        char x = s[p++];
        t += x;
        if (x == '\\') {
          if (p < s.size())
            t += s[p++];
        } else if (x == '"') {
          ok = true;
          break;
        }
      }
      if (!ok)
        return 12005;
    } else if (c == '[') {
      k = 2;
      bool ok = false;
      while (p < s.size()) {
        char x = s[p++];
        t += x;
        if (x == ']') {
          ok = true;
          break;
        }
      }
      if (!ok)
        return 12007;
    } else if (sp.find(c) != string::npos) {
      k = 0;
      t = c;
      p++;
    } else {
      k = 4;
      while (p < s.size() && !ctl(s[p]) && !lwsp(s[p]) && sp.find(s[p]) == string::npos)
        t += s[p++];
    }
    if (k != 3 || keep)
      o.push_back({k, t});
  }
}
string tokPrint(const std::vector<Tok>& o) {
  string r;
  for (auto& t : o)
    r += std::to_string(t.k) + " " + t.t + "|";
  return r;
}
string params(const std::vector<Tok>& T, size_t i, bool strict,
              bool& err) {  // returns printed attribute list
  std::vector<std::pair<string, string>> A;
  err = false;
  auto out = [&] {
    string r;
    for (auto& a : A)
      r += a.first + "=" + a.second + "|";
    return r;
  };
  while (i < T.size()) {
    if (T[i].k != 0 || T[i].t != ";") {
      err = strict;
      return out();
    }
    while (i < T.size() && T[i].k == 0 && T[i].t == ";")
      i++;
    if (i >= T.size() || T[i].k != 4) {
      err = true;
      return out();
    }
    string n = T[i++].t;
    if (i >= T.size() || T[i].k != 0 || T[i].t != "=") {
      err = true;
      return out();
    }
    i++;
    if (i >= T.size()) {
      err = true;
      return out();
    }
    string v;
    if (T[i].k == 4) {
      v = T[i++].t;
      while (i < T.size() && T[i].k == 4)
        v += " " + T[i++].t;
    } else if (T[i].k == 1)
      v = rfc_unquote(T[i++].t.c_str()).c_str();
    else if (T[i].k == 2)
      v = T[i++].t;
    else {
      err = true;
      return out();
    }
    bool f = false;
    for (auto& a : A)
      if (low(a.first) == low(n)) {
        a.second = v;
        f = true;
      }
    if (!f)
      A.push_back({n, v});
  }
  return out();
}
TEST(Scratch, Values) {
  Dice d(8);
  for (int i = 0; i < 60000; i++) {
    string s = d.text({"a", "b", "/", ";", "=", "\"q\\\"r\"", "\"", "(c)", "(", " ", "[x]", "[",
                       ",", "2", "-7", "\xE9", "text/plain", ";n=v"},
                      10);
    for (int mode = 0; mode < 2; mode++)
      for (int keep = 0; keep < 2; keep++) {
        std::vector<Tok> T;
        unsigned st = tokRef(s, mode, keep, T);
        RFC_SymbolList L;
        ASSERT_EQ(rfc_tokenise(s.c_str(), mode, keep, L), st) << s;
        ASSERT_EQ(print(L), tokPrint(T)) << s;
      }
    std::vector<Tok> T;
    unsigned st = tokRef(s, 0, false, T);
    SCL_String ty, su;
    ATR_AttributeList A;
    unsigned got = rfc_parse_content_type(s.c_str(), ty, su, A);
    if (st || T.size() < 3 || T[0].k != 4 || T[1].k != 0 || T[1].t != "/" || T[2].k != 4) {
      ASSERT_EQ(got, 12001u) << s;
    } else {
      bool e;
      string p = params(T, 3, false, e);
      ASSERT_EQ(got, e ? 12001u : 0u) << s;
      ASSERT_EQ(string(ty.c_str()), T[0].t);
      ASSERT_EQ(string(su.c_str()), T[2].t);
      ASSERT_EQ(print(A), p) << s;
    }
    got = rfc_parse_disposition(s.c_str(), ty, A);
    if (st || T.empty() || T[0].k != 4) {
      ASSERT_EQ(got, 12026u) << s;
    } else {
      bool e;
      string p = params(T, 1, true, e);
      ASSERT_EQ(got, e ? 12026u : 0u) << s;
      ASSERT_EQ(print(A), p) << s;
    }
    ASSERT_EQ(rfc_parse_word(s.c_str(), ty), (!st && T.size() == 1 && T[0].k == 4) ? 0u : 12010u)
        << s;
    st = tokRef(s, 1, false, T);
    RFC_PartList PL;
    got = rfc_parse_encoding_list(s.c_str(), PL);
    bool ok = !st;
    string e;
    size_t k = 0;
    while (ok) {
      if (k >= T.size() || T[k].k != 4) {
        ok = false;
        break;
      }
      long num = -1;
      string ty2;
      const string& a = T[k].t;
      size_t z = (a[0] == '+' || a[0] == '-') ? 1 : 0;
      bool in = z < a.size();
      for (size_t q = z; q < a.size(); q++)
        if (a[q] < '0' || a[q] > '9')
          in = false;
      if (in) {
        num = atol(a.c_str());
        k++;
      }
      bool first = true;
      while (k < T.size() && T[k].k == 4) {
        if (!first)
          ty2 += " ";
        ty2 += T[k++].t;
        first = false;
      }
      if (!in && k < T.size()) {
        ok = false;
        break;
      }
      e += std::to_string(num) + " " + ty2 + "|";
      if (k >= T.size())
        break;
      if (T[k].k == 0 && T[k].t == ",")
        k++;
      else
        ok = false;
    }
    ASSERT_EQ(got, ok ? 0u : 12009u) << s;
    if (ok) {
      string g;
      for (std::uint16_t q = 0; q < PL.count(); q++)
        g += std::to_string(PL.get(q).number) + " " + PL.get(q).text.c_str() + "|";
      ASSERT_EQ(g, e) << s;
    }
  }
}
string wf(const string& N, const string& V, bool F) {
  string o;
  size_t w = 0;
  if (!N.empty()) {
    o += N + ":";
    w = N.size() + 1;
  }
  auto plain = [&] {
    if (!V.empty() && !lwsp(V[0]))
      o += " ";
    o += V + "\r\n";
    return o;
  };
  if (!F || V.size() + w < 77)
    return plain();
  std::vector<Tok> T;
  if (tokRef(V, 1, true, T))
    return plain();
  o += " ";
  size_t c = w + 1;
  char L = ' ';
  size_t n = T.size();
  for (size_t i = 0; i < n; i++) {
    const string& t = T[i].t;
    if (c + t.size() > 75 && c > 4 && L != '=') {
      o += "\r\n    ";
      c = 4;
    }
    o += t;
    L = t.back();
    c += t.size();
    if (c < 76) {
      if (L != '=' && i + 1 < n) {
        o += " ";
        c++;
      }
    } else if (L != '=') {
      o += "\r\n";
      if (i + 1 == n)
        c = 0;
      else {
        o += "    ";
        c = 4;
      }
    }
  }
  if (c)
    o += "\r\n";
  return o;
}
TEST(Scratch, Write) {
  Dice d(9);
  const string x40(40, 'x'), x70(70, 'y');
  for (int i = 0; i < 60000; i++) {
    string v = d.text(
        {"a", "bb", "ccc", ";", "=", " ", "(c d)", "\"q r\"", "\"", "x=", x40, x70, "dddddd", ","},
        30);
    string n = d.text({"A", "To", "Subject"}, 1);
    const Object o = inMemory("");
    unsigned s = 0;
    bool F = d.below(8) != 0;
    rfc_write_field(*o, n.c_str(), v.c_str(), F, s);
    ASSERT_EQ(contentOf(*o), wf(n, v, F)) << v;
  }
}
string ps(const string& s) {
  string r;
  size_t n = s.size(), i = 0;
  while (i + 2 < n) {
    const string K = "APBQULR", M = "@%!\"_()";
    size_t k = K.find(char(toupper(s[i + 1])));
    auto dg = [](char c) { return c >= '0' && c <= '9'; };
    if (s[i] == '(' && k != string::npos && s[i + 2] == ')') {
      r += M[k];
      i += 3;
    } else if (s[i] == '(' && i + 4 < n && dg(s[i + 1]) && dg(s[i + 2]) && dg(s[i + 3]) &&
               s[i + 4] == ')') {
      char c = char(atoi(s.substr(i + 1, 3).c_str()) % 256);
      if (c)
        r += c;
      i += 5;
    } else
      r += s[i++];
  }
  return r + s.substr(i < n ? i : n);
}
TEST(Scratch, Ps) {
  Dice d(10);
  for (int i = 0; i < 60000; i++) {
    string s = d.text({"(", ")", "a", "Q", "0", "6", "65", "(a)", "(065)", "x", "(321)"}, 8);
    ASSERT_EQ(string(rfc_ps_decode(s.c_str()).c_str()), ps(s)) << s;
  }
}
int matchRef(string l, const string& b) {
  if (l.size() <= 2 || l.substr(0, 2) != "--")
    return 0;
  bool strict = b.empty() || (b[0] != ' ' && b.back() != ' ');
  if (strict) {
    while (l.size() > 2 && l[2] == ' ')
      l.erase(2, 1);
    auto ends = [&] { return l.size() >= 2 && l.substr(l.size() - 2) == "--"; };
    if (ends())
      while (l.size() > 2 && l[l.size() - 3] == ' ')
        l.erase(l.size() - 3, 1);
    else
      while (!l.empty() && l.back() == ' ')
        l.pop_back();
  }
  if (l.size() == b.size() + 2)
    return l.substr(2) == b ? 1 : 0;
  if (l.size() == b.size() + 4)
    return l.substr(2, b.size()) == b && l.substr(l.size() - 2) == "--" ? 2 : 0;
  return 0;
}
TEST(Scratch, Matcher) {
  Dice d(11);
  for (int i = 0; i < 300000; i++) {
    string b = d.text({"-", " ", "a", "--"}, 4);
    string l = d.text({"-", " ", "a", "--", "--"}, 6);
    if (d.below(2))
      l = "--" + b + d.text({"-", " "}, 3);
    ASSERT_EQ(int(RFC_BoundaryMatcher(b).match(l)), matchRef(l, b)) << "[" << l << "][" << b << "]";
  }
}
string mpRef(const string& t, const string& b, size_t start, long limit) {
  Rd r{t, start};
  string l;
  string out;
  bool fail = false;
  size_t ls = 0;
  auto find = [&]() -> int {
    bool cont = false;
    while (true) {
      ls = r.p;
      if (r.p >= t.size())
        return 0;
      size_t p0 = r.p;
      size_t n = 0;
      string s;
      while (r.p < t.size() && n < 511 && t[r.p] != '\r' && t[r.p] != '\n') {
        s += t[r.p++];
        n++;
      }
      bool cut = false;
      if (r.p < t.size()) {
        if (t[r.p] == '\r' || t[r.p] == '\n') {
          char f = t[r.p++];
          if (r.p < t.size() && (t[r.p] == '\r' || t[r.p] == '\n') && t[r.p] != f)
            r.p++;
        } else
          cut = true;
      }
      (void)p0;
      bool whole = !cont && !cut;
      cont = cut;
      int m = whole ? matchRef(s, b) : 0;
      if (m)
        return m;
    }
  };
  (void)fail;
  int m = find();
  while (m == 1) {
    if (long(r.p) >= long(start) + limit)
      break;
    size_t beg = r.p;
    m = find();
    size_t e = ls;
    if (e - beg >= 2 && m) {
      auto nl = [&](char c) { return c == '\r' || c == '\n'; };
      if (nl(t[e - 1]))
        e -= nl(t[e - 2]) ? 2 : 1;
    }
    out += "[" + t.substr(beg, e - beg) + "]";
  }
  return out;
}
TEST(Scratch, Multipart) {
  Dice d(12);
  const string l511(511, 'x'), pad(505, ' ');
  for (int i = 0; i < 30000; i++) {
    string t = d.text({"--b", "--b--", "\r\n", "\n", "\n", "a", "--b\n", "--b\r\n", "\r", "-- b\n",
                       l511, pad, "--"},
                      20);
    size_t st = d.below(4) == 0 && !t.empty() ? d.below(t.size()) : 0;
    long lim = d.below(4) == 0 ? long(d.below(40)) : 0x7fffffff;
    for (int k = 0; k < 2; k++) {
      Object o = k ? inBlocks(t, d.below(9)) : inMemory(t);
      RFCMptDa v(*o, "b", int(st), int(lim));
      string g;
      unsigned s = 0;
      for (unsigned q = 0; q < v.childCount(s); q++)
        g += "[" + contentOf(*v.getChild(q, s)) + "]";
      ASSERT_EQ(g, mpRef(t, "b", st, lim)) << t << " " << st << " " << lim;
    }
  }
}
}  // namespace
