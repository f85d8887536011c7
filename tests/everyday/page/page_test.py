"""What a browser makes of a page. PAGE_WRITER names the program that writes it."""
import tempfile
import unittest

from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

from browser import Browser
from library import Library, surface

MATERIALS = (  # name, text, dates of palette and picture
    ('metals/gold', surface('v_metal color .9 .7 .3'), (1000, 9000)),
    ('metals/old/copper10', surface('v_metal color .9 .5 .4'), (5000, 8000)),
    ('metals/old/copper9', surface('v_metal color .8 .5 .4'), (6000, 7000)),
    ('Crème brûlée', surface('v_plastic'), (2000, 2000)),
    ('haze', surface('v_fog density .1', 'fog'), (3000, 3000)),
    ('lamp', surface('v_point', 'light'), (4000, 4000)),
)
BY_NAME = ['broken', 'copper9', 'copper10', 'Crème brûlée', 'gold', 'haze', 'lamp', 'unmade']

HIT = 'window.hit=1'
HOSTILE = (  # palettes' names
    f'<img src=x onerror={HIT}>', f'</script><script>{HIT}<', f'javascript:{HIT}',
    f'"onmouseover="{HIT}" x="', f"'-{HIT}-'", f'{{{{constructor.constructor("{HIT}")()}}}}',
    '<!--<script>', 'a b#c?d%41&amp;', 'new\nline\ttab', '\u202egnp.exe', '\u2028x\u2029',
    'zażółć 金 😀', '../lib/up', b'latin-\xe9', '__proto__', 'constructor',
)


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix='page test #1 ')
        self.addCleanup(folder.cleanup)
        self.library = Library(folder.name + '/lib')

    def tearDown(self):
        self.assertEqual([], self.browser.complaints())

    def wait_for_pictures(self):
        WebDriverWait(self.browser.driver, 20).until(lambda driver: driver.execute_script(
            'return [...document.querySelectorAll("#grid li:not(.failed, .missing) img")]'
            '.every(each => each.naturalWidth > 0)'))


class Materials(PageTest):
    def setUp(self):
        super().setUp()
        for name, text, dates in MATERIALS:
            self.library.add(name, text, dates=dates)
        self.library.add('broken', surface('v_water'), message='no shader "v_water"', picture=False)
        self.library.add('unmade', '', picture=False)
        self.browser.look(1000, 760)
        self.browser.open(self.library.write_page())

    def test_typing_searches_names_shaders_types_and_folders(self):
        for text, names in (
                ('gol', ['gold']), ('v_metal', ['copper9', 'copper10', 'gold']),
                ('fog', ['haze']), ('metals/old', ['copper9', 'copper10']),
                ('old .8', ['copper9']), ('CREME', ['Crème brûlée']), ('xyzzy', []), (' ', BY_NAME)):
            with self.subTest(text):
                self.browser.search(text)
                self.assertEqual(names, self.browser.names())
        self.browser.search('xyzzy')
        self.browser.click('#nothing button')
        self.assertEqual(BY_NAME, self.browser.names())

    def test_filters_show_a_type_and_count_what_was_found(self):
        self.browser.choose('light')
        self.assertEqual(['lamp'], self.browser.names())
        self.browser.choose('surface')
        self.browser.search('metal')
        self.assertEqual(['copper9', 'copper10', 'gold'], self.browser.names())
        self.assertEqual(['All3', 'surface3', 'light0', 'fog0', 'failed0', 'no picture0'],
                         self.browser.texts('#filters button'))

    def test_failed_palettes_and_missing_pictures_are_marked(self):
        self.browser.choose('failed')
        self.assertEqual(['no shader "v_water"'], self.browser.texts('#grid .failed .note'))
        self.browser.click('#grid button')
        self.assertEqual('no shader "v_water"', self.browser.text('#view-note'))
        self.browser.press(Keys.ESCAPE)
        self.browser.choose('no picture')
        self.assertEqual(['unmade'], self.browser.texts('#grid .missing .name'))

    def test_sorting_by_a_date_puts_the_newest_first(self):
        for order, dates in (('changed', 0), ('made', 1)):
            self.browser.run('const sort = document.getElementById("sort"); sort.value ='
                             'arguments[0]; sort.dispatchEvent(new Event("change"))', order)
            expected = sorted(MATERIALS, key=lambda each: -each[2][dates])
            self.assertEqual([name.split('/')[-1] for name, *_ in expected],
                             [name for name in self.browser.names()
                              if name not in ('broken', 'unmade')])

    def test_keys_move_open_and_lead_back(self):
        for key, focused in (
                ('/', 'search'), (Keys.ARROW_DOWN, 'broken'), (Keys.ARROW_RIGHT, 'copper9'),
                (Keys.END, 'unmade'), (Keys.ARROW_RIGHT, 'unmade'), (Keys.ARROW_LEFT, 'lamp'),
                (Keys.HOME, 'broken'), (Keys.ARROW_DOWN, 'lamp'), (Keys.ARROW_UP, 'broken'),
                (Keys.ENTER, 'view-name'), (Keys.ARROW_RIGHT, 'view-name'), (Keys.ESCAPE, 'copper9'),
                (Keys.ARROW_UP, 'search'), (Keys.ENTER, 'view-name'), (Keys.ESCAPE, 'copper9')):
            self.browser.press(key)
            self.assertEqual(focused, self.browser.focused(), key)

    def test_the_larger_view_shows_and_copies_the_shader(self):
        self.browser.search('gold')
        self.browser.press(Keys.ENTER)
        self.assertEqual('gold', self.browser.text('#view-name'))
        self.assertEqual(['v_metal color .9 .7 .3'], self.browser.texts('#view-texts pre'))
        self.browser.click('#view-texts button')
        self.assertEqual('Copied', self.browser.text('#view-texts button'))
        self.browser.press(Keys.ESCAPE, '/')
        self.browser.driver.switch_to.active_element.send_keys(Keys.CONTROL, 'v')
        self.browser.settle()
        self.assertEqual('v_metal color .9 .7 .3',
                         self.browser.run('return document.getElementById("search").value'))

    def test_light_and_dark_follow_the_system_until_somebody_chooses(self):
        ground = 'return getComputedStyle(document.documentElement).backgroundColor'
        self.browser.look(1000, 760, scheme='light')
        light = self.browser.run(ground)
        self.browser.look(1000, 760, scheme='dark')
        self.assertNotEqual(light, self.browser.run(ground))
        self.browser.click('#theme')
        self.assertEqual(light, self.browser.run(ground))
        self.browser.driver.refresh()
        self.assertEqual(light, self.browser.run(ground))
        self.browser.run('localStorage.clear()')

    def test_text_stands_out_from_its_ground(self):
        for scheme in ('light', 'dark'):
            self.browser.look(1000, 760, scheme=scheme)
            colours = self.browser.run('''
                const probe = document.body.appendChild(document.createElement('i'));
                return arguments[0].map(name => {
                  probe.style.color = `var(--${name})`;
                  return getComputedStyle(probe).color.match(/[\\d.]+/g).slice(0, 3).map(Number);
                })''', ['ink', 'dim', 'fail', 'ground', 'raised', 'well'])
            for text in colours[:3]:
                for ground in colours[3:]:
                    self.assertGreaterEqual(contrast(text, ground), 4.5, (scheme, text, ground))

    def test_a_phone_shows_all_of_it_without_scrolling_aside(self):
        self.browser.look(390, 844, phone=True)
        self.browser.driver.refresh()
        aside = 'return document.scrollingElement.scrollWidth'
        self.assertEqual(390, self.browser.run(aside))
        self.browser.click('#grid button')
        self.assertLessEqual(self.browser.run('return document.getElementById("view").scrollWidth'),
                             390)


class Strangers(PageTest):
    def test_hostile_names_and_texts_are_shown_and_run_nothing(self):
        for name in HOSTILE:
            text = name if isinstance(name, str) else ''
            kind = ''.join(each for each in text if each not in '\n\t"\'\\') or 'x'
            self.library.add(name, f'ShaderType "{kind}"\nBeginIfdExtra\n{text}\nEndIfdExtra\n')
            self.library.add(f'failed/{len(self.library.entries)}', '', message=text, picture=False)
        self.browser.open(self.library.write_page())
        self.wait_for_pictures()
        names = {name.split('/')[-1] for name in HOSTILE if isinstance(name, str)}
        self.assertLessEqual(names | {'latin-\ufffd'}, set(self.browser.names()))
        self.browser.click('#grid button')
        for _ in range(2 * len(HOSTILE)):
            self.browser.press(Keys.ARROW_RIGHT)
        self.assertIsNone(self.browser.run('return window.hit'))
        self.assertEqual(2, self.browser.run('return document.scripts.length'))

    def test_links_lead_to_the_palettes(self):
        for name in HOSTILE:
            self.library.add(name, surface('here'))
        url = self.library.write_page()
        for place in range(len(HOSTILE)):
            self.browser.open(url)
            self.browser.run('document.querySelectorAll("#grid button")[arguments[0]].click();'
                             'const link = document.querySelector("#view-facts a");'
                             'link.removeAttribute("download"); location = link.href', place)
            WebDriverWait(self.browser.driver, 10).until(
                lambda driver: 'here' in driver.find_element('css selector', 'body').text)


class Thousands(PageTest):
    NUMBER = 10000

    def setUp(self):
        super().setUp()
        for i in range(self.NUMBER):
            self.library.add(f'{i // 100}/sample{i}', surface(f'v_plastic diff {i}'))
        self.browser.look(1440, 900)
        self.browser.open(self.library.write_page())

    def test_every_place_is_reached_and_little_is_in_the_document(self):
        for part in range(0, 21):
            self.browser.run('scrollTo(0, arguments[0] * (document.body.scrollHeight - innerHeight))',
                             part / 20)
            self.browser.settle()
            self.wait_for_pictures()
            middle = self.browser.run('''
                const tile = document.elementsFromPoint(200, innerHeight / 2)
                  .concat(document.elementsFromPoint(200, innerHeight / 2 + 60))
                  .find(each => each.tagName === 'LI');
                return Number(tile.querySelector('.name').textContent.slice(6))''')
            self.assertAlmostEqual(part / 20, middle / self.NUMBER, delta=.01)
            self.assertLess(len(self.browser.names()), 200)
        self.browser.press(Keys.HOME, Keys.END)
        self.assertEqual(f'sample{self.NUMBER - 1}', self.browser.focused())
        self.browser.search('sample777')
        self.assertEqual(['sample777'] + [f'sample{i}' for i in range(7770, 7780)],
                         self.browser.names())


def contrast(a, b):
    """The contrast ratio of two colours (WCAG 2.1)."""
    def luminance(colour):
        parts = [each / 255 for each in colour]
        linear = [each / 12.92 if each <= .04045 else ((each + .055) / 1.055) ** 2.4
                  for each in parts]
        return .2126 * linear[0] + .7152 * linear[1] + .0722 * linear[2]
    light, dark = sorted((luminance(a), luminance(b)), reverse=True)
    return (light + .05) / (dark + .05)


if __name__ == '__main__':
    unittest.main()
