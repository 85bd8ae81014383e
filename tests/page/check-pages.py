#!/usr/bin/python3
"""Checks nevqos-sim's HTML report page (--html) in a headless browser.

usage: check-pages.py NEVQOS_SIM EXAMPLE.yaml... [--screenshot PNG --screenshot-of EXAMPLE]

For each example it runs NEVQOS_SIM EXAMPLE --json -o X.json --html X.html, opens the page in
one Chromium session, waits for the page's script to finish and compares what it drew (charts,
tables, lists, counted from their data attributes) with the JSON report; a browser console
error fails the page. A self-test first shows that a page with a broken script and a page
drawn from other data are both caught. Exit code 1 on a failure, 2 when the browser is missing.
"""

import argparse
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
TEMPLATE = os.path.join(HERE, '..', '..', 'sim', 'runner', 'page', 'report.html')
PLACEHOLDER = '@NEVQOS_REPORT_JSON@'
PAGE_ROWS = 500        # rows a list of the page shows before "show more"
MAX_EVENTS = 1000      # event markers a chart of the page draws at most
MARKUP = '<!--<script> </script> & <b>not bold</b>'
RENDER_TIMEOUT = 60    # seconds to load and draw: the 10k-rule example takes a few
# Headless as root on a machine without network: the background services would only fail.
CHROMIUM_FLAGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic',
                  '--no-first-run', '--disable-background-networking',
                  '--disable-component-update', '--disable-sync', '--disable-dev-shm-usage',
                  '--window-size=1280,2400']

# The page's rendered mark, or "unset" once the page has loaded and not set it within a grace
# time (arguments[0], ms): a script that stopped would otherwise cost the whole time-out.
RENDERED = r'''
const mark = document.body && document.body.dataset.rendered;
if (mark) return mark;
const nav = performance.getEntriesByType('navigation')[0];
return nav && nav.loadEventEnd > 0 && performance.now() - nav.loadEventEnd > arguments[0]
   ? 'unset' : null;
'''

# What the page drew, read from the data attributes of its elements in one round trip.
DOM_SUMMARY = r'''
const all = (sel) => [...document.querySelectorAll(sel)];
const series = (id) => Object.fromEntries(all(`#${id} g[data-series]`).map((g) => [
   g.dataset.series,
   [...g.querySelectorAll('circle[data-step]')].map((c) =>
      [+c.dataset.step, +c.dataset.used, +c.dataset.size])]));
return {
   occupancy: series('occupancy-chart'),
   pools: series('pools-chart'),
   events: all('#occupancy-chart [data-event]').length,
   bars: all('#timeline-chart g.bar[data-step]').map((g) => [+g.dataset.step, +g.dataset.total]),
   faults: all('#timeline-chart [data-fault]').map((r) =>
      [r.dataset.fault, +r.dataset.from, +r.dataset.until]),
   checks: all('#timeline-chart [data-check]').map((c) =>
      [+c.dataset.check, +c.dataset.findings]),
   status: all('#status tr[data-map]').map((r) => r.dataset.map),
   fit: all('#fit tr[data-fit]').map((r) => r.dataset.fit),
   acls: all('#costs-acls tr[data-acl]').map((r) =>
      [r.dataset.acl, +r.dataset.entries, +r.dataset.added]),
   calls: all('#calls-list tbody tr').length,
   logs: all('#logs-list tbody tr').length,
   absent: all('[data-absent]').map((n) => n.dataset.absent),
};
'''


def missing(what):
   print(f'check-pages.py: {what} not found: run scripts/install-deps', file=sys.stderr)
   sys.exit(2)


def find_program(*names):
   for name in names:
      path = shutil.which(name) or shutil.which(name, path='/usr/bin:/usr/lib/chromium')
      if path:
         return path
   return None


def start_browser(profile):
   try:
      from selenium import webdriver
      from selenium.webdriver.chrome.service import Service
   except ImportError:
      missing('python3-selenium')
   chromium = find_program('chromium', 'chromium-browser')
   driver = find_program('chromedriver')
   if not chromium or not driver:
      missing('chromium' if not chromium else 'chromedriver')
   options = webdriver.ChromeOptions()
   options.binary_location = chromium
   for flag in CHROMIUM_FLAGS + [f'--user-data-dir={profile}']:
      options.add_argument(flag)
   options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
   browser = webdriver.Chrome(service=Service(driver), options=options)
   browser.set_window_size(1280, 2400)
   return browser


def fill_template(template, report_text):
   # "<" only stands in JSON strings, where \u003c reads the same and can't start a tag.
   return template.replace(PLACEHOLDER, report_text.replace('<', '\\u003c'))


def embedded_report(html):
   m = re.search(r'<script id="report-data" type="application/json">(.*?)</script>', html, re.S)
   return json.loads(m.group(1)) if m else None


def markup_copy(example, workdir):
   """The example with markup in its description, which the page must show as text: a
   "<!--<script>" in the data would otherwise swallow the page's own script."""
   with open(example, encoding='utf-8') as f:
      text = f.read()
   line = f'description: "{MARKUP}"'
   text, n = re.subn(r'^description:.*$', line, text, count=1, flags=re.M)
   path = os.path.join(workdir, 'markup-in-description.yaml')
   with open(path, 'w', encoding='utf-8') as f:
      f.write(text if n else f'{line}\n{text}')
   return path


def range_blocks_added(acl):
   """Entries that are blocks of an expanded range, less the rules they came from."""
   def block(f):
      return isinstance(f, dict) and 'mask' in f and f['mask'] not in (0, 65535)
   rules = [e['ruleNum'] for e in acl['entries']
            if any(block(e['fields'].get(k)) for k in ('srcPort', 'dstPort', 'ipLen'))]
   return len(rules) - len(set(rules))


def fault_spans(steps):
   """[fault, first step, last step] of each run of samples with the fault on."""
   spans = []
   for i, st in enumerate(steps):
      for name in st.get('faults', []):
         last = next((s for s in reversed(spans) if s[0] == name), None)
         if last and last[2] == i - 1:
            last[2] = i
         else:
            spans.append([name, i, i])
   return sorted(spans)


def step_points(steps, name, of):
   points = []
   for st in steps:
      p = of(st, name) or {'used': 0, 'size': 0}
      points.append([st['step'], p['used'], p['size']])
   return points


def slice_of(st, name):
   return next((s for s in st['tcam']['slices'] if s['name'] == name), None)


def pool_of(st, name):
   return st['tcam']['rangeCheckers'] if name == 'rangeCheckers' else st['pools'].get(name)


def compare(problems, what, got, want):
   if got != want:
      shown = lambda v: (json.dumps(v)[:300])
      problems.append(f'{what}: the page has {shown(got)}, the report {shown(want)}')


def show_all(browser, button_id):
   """Clicks a list's "show more" until it has every row."""
   from selenium.webdriver.common.by import By
   for button in browser.find_elements(By.ID, button_id):
      while button.is_displayed():
         button.click()


def filter_rows(browser, box_id, table_id, query):
   """Types a filter and returns the text of the rows it leaves."""
   from selenium.webdriver.common.by import By
   from selenium.webdriver.common.keys import Keys
   from selenium.webdriver.support.ui import WebDriverWait
   box = browser.find_element(By.ID, box_id)
   # As a user edits it: clear() fires no input event.
   box.send_keys(Keys.CONTROL, 'a')
   box.send_keys(Keys.BACKSPACE, query)
   WebDriverWait(browser, 10, poll_frequency=0.05).until(lambda b: b.execute_script(
      f'return document.querySelector("#{table_id} table").dataset.query', ) == query.strip())
   return browser.execute_script(
      f'return [...document.querySelectorAll("#{table_id} tbody tr")].map((r) => r.textContent)')


def check_page(browser, url, report, grace=5):
   """Opens the page and returns its problems against the report, an empty list if none."""
   from selenium.common.exceptions import TimeoutException
   from selenium.webdriver.support.ui import WebDriverWait
   problems = []
   browser.get_log('browser')
   browser.get(url)
   try:
      rendered = WebDriverWait(browser, RENDER_TIMEOUT, poll_frequency=0.05).until(
         lambda b: b.execute_script(RENDERED, grace * 1000))
   except TimeoutException:
      rendered = f'not within {RENDER_TIMEOUT} s'
   if rendered != 'yes':
      problems.append(f'the page did not finish drawing: rendered is {rendered}')
   for entry in browser.get_log('browser'):
      if entry.get('level') == 'SEVERE':
         problems.append(f'browser console: {entry.get("message")}')
   if problems:
      return problems

   header = browser.execute_script('return document.getElementById("summary").textContent')
   for key in ('file', 'description'):
      if report['scenario'][key] not in header:
         problems.append(f'the header lacks the scenario {key} "{report["scenario"][key]}"')
   steps, logs, calls = report.get('steps'), report['logs'], report['calls']
   if not isinstance(steps, list) or not isinstance(report.get('fit'), list):
      return ['the report has no "steps" or "fit": not a report of format 3']
   show_all(browser, 'costs-acls-more')
   dom = browser.execute_script(DOM_SUMMARY)

   slices = [s['name'] for s in report['tcam']['slices']]
   compare(problems, 'occupancy chart series', sorted(dom['occupancy']), sorted(slices))
   for name in slices:
      compare(problems, f'occupancy of {name} (step, used, size)', dom['occupancy'].get(name),
              step_points(steps, name, slice_of))
   pools = ['rangeCheckers'] + list(steps[0]['pools'] if steps else [])
   compare(problems, 'pools chart series', sorted(dom['pools']), sorted(pools))
   for name in pools:
      compare(problems, f'pool {name} (step, used, size)', dom['pools'].get(name),
              step_points(steps, name, pool_of))
   events = sum(1 for entry in logs if re.search(r'_(FULL|NORMAL)$', entry['handle']))
   compare(problems, 'occupancy event markers', dom['events'], min(events, MAX_EVENTS))
   compare(problems, 'timeline bars (step, calls)', dom['bars'],
           [[st['step'], sum(st['calls'].values())] for st in steps])
   compare(problems, 'fault windows (fault, first step, last step)', sorted(dom['faults']),
           fault_spans(steps))
   verify = report.get('verify')
   if verify:
      compare(problems, 'verification runs (step, findings)', dom['checks'],
              [[c['step'], c['findings']] for c in verify.get('checks', [])])
   elif 'verify' not in dom['absent']:
      problems.append('no note that verification is not in the report')
   compare(problems, 'status rows', dom['status'],
           [m['name'] for m in report['status']['policyMaps']])
   compare(problems, 'fit rows', dom['fit'], [f['policyMap'] for f in report['fit']])
   compare(problems, 'costs ACLs (id, entries, added)', sorted(dom['acls']),
           sorted([a['id'], len(a['entries']), range_blocks_added(a)]
                  for a in report['tcam']['acls']))
   entries = [a[1] for a in dom['acls']]
   if entries != sorted(entries, reverse=True):
      problems.append('costs ACLs are not sorted by entries')
   compare(problems, 'call rows', dom['calls'], min(len(calls), PAGE_ROWS))
   compare(problems, 'log rows', dom['logs'], min(len(logs), PAGE_ROWS))

   ops = [c['op'] for c in calls if 'op' in c]
   if ops:
      rows = filter_rows(browser, 'calls-list-filter', 'calls-list', ops[-1])
      others = sum(1 for r in rows if ops[-1].lower() not in r.lower())
      if not rows or others:
         problems.append(f'filtering the calls by "{ops[-1]}" leaves {len(rows)} rows, '
                         f'{others} without it')
      rows = filter_rows(browser, 'calls-list-filter', 'calls-list', 'no call says \u2603')
      if rows:
         problems.append(f'filtering the calls by a text no call has leaves {len(rows)} rows')
      filter_rows(browser, 'calls-list-filter', 'calls-list', '')
   return problems


def self_test(browser, report_path, workdir):
   """The checker must fail a page whose script throws and a page drawn from other data."""
   with open(TEMPLATE, encoding='utf-8') as f:
      template = f.read()
   with open(report_path, encoding='utf-8') as f:
      text = f.read()
   report = json.loads(text)
   throwing = template.replace("'use strict';", "'use strict';\nthrow new Error('broken');", 1)
   other = dict(report, steps=report['steps'][:-1])
   cases = [('intact page', fill_template(template, text), lambda p: not p),
            ('page whose script throws', fill_template(throwing, text),
             lambda p: any('console' in x for x in p)),
            ('page without the last step', fill_template(template, json.dumps(other)),
             lambda p: any(x.startswith('occupancy of') for x in p)
                       and any(x.startswith('timeline bars') for x in p))]
   failures = []
   for name, html, expected in cases:
      path = os.path.join(workdir, 'self-test.html')
      with open(path, 'w', encoding='utf-8') as f:
         f.write(html)
      problems = check_page(browser, 'file://' + path, report, grace=1)
      if not expected(problems):
         failures.append(f'{name}: the checker found {problems or "nothing"}')
   return failures


def run_example(sim, example, workdir, flags=()):
   """Runs the example; returns (report, page path) or raises RuntimeError."""
   base = os.path.splitext(os.path.basename(example))[0]
   json_path = os.path.join(workdir, base + '.json')
   html_path = os.path.join(workdir, base + '.html')
   run = subprocess.run([sim, example, '--json', '-o', json_path, '--html', html_path, *flags],
                        capture_output=True, text=True, timeout=600)
   # 1 is an expectation or verification mismatch, which some examples show on purpose.
   if run.returncode not in (0, 1):
      raise RuntimeError(f'nevqos-sim exited with {run.returncode}: {run.stderr.strip()[-500:]}')
   with open(json_path, encoding='utf-8') as f:
      report = json.load(f)
   with open(html_path, encoding='utf-8') as f:
      html = f.read()
   if embedded_report(html) != report:
      raise RuntimeError('the page does not carry the JSON report of the run')
   return report, html_path


def plural(n, word):
   return f'{n} {word}' + ('' if n == 1 else 's')


def main():
   parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
   parser.add_argument('sim', help='the nevqos-sim program')
   parser.add_argument('examples', nargs='+', help='scenario files')
   parser.add_argument('--screenshot', metavar='PNG', help='save a screenshot of a page')
   parser.add_argument('--screenshot-of', metavar='EXAMPLE', help='the example to take')
   args = parser.parse_args()
   if bool(args.screenshot) != bool(args.screenshot_of):
      parser.error('--screenshot and --screenshot-of go together')

   workdir = tempfile.mkdtemp(prefix='nevqos-pages-')
   try:
      browser = start_browser(os.path.join(workdir, 'profile'))
   except BaseException:
      shutil.rmtree(workdir, ignore_errors=True)
      raise
   failures = []
   try:
      # The copy also runs with verification, which no example's own run has.
      runs = [(e, ()) for e in args.examples]
      runs.append((markup_copy(args.examples[0], workdir), ('--verify=always',)))
      for example, flags in runs:
         name = os.path.basename(example)
         try:
            report, page = run_example(args.sim, example, workdir, flags)
         except (RuntimeError, OSError, ValueError, subprocess.SubprocessError) as e:
            failures.append(f'{name}: {e}')
            continue
         problems = check_page(browser, 'file://' + page, report)
         if args.screenshot_of and name == os.path.basename(args.screenshot_of):
            browser.execute_script('window.scrollTo(0, 0)')
            browser.save_screenshot(args.screenshot)
         if problems:
            failures += [f'{name}: {p}' for p in problems]
            continue
         print(f'ok {name}: {plural(len(report["tcam"]["slices"]), "slice")}, '
               f'{plural(len(report["steps"]), "step")}, '
               f'{plural(len(report["status"]["policyMaps"]), "map")}')
      if args.examples and not failures:
         first = os.path.splitext(os.path.basename(args.examples[0]))[0] + '.json'
         failures += [f'self-test: {f}' for f in
                      self_test(browser, os.path.join(workdir, first), workdir)]
   finally:
      browser.quit()
   for f in failures:
      print(f'FAIL {f}', file=sys.stderr)
   if failures:
      print(f'check-pages.py: {plural(len(failures), "problem")}; the pages are in {workdir}',
            file=sys.stderr)
      return 1
   shutil.rmtree(workdir, ignore_errors=True)
   return 0


if __name__ == '__main__':
   sys.exit(main())
